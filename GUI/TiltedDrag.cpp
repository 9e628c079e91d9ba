// SPDX-License-Identifier: MIT
#include "GUI/TiltedDrag.h"

#include <QApplication>
#include <QDrag>
#include <QMimeData>
#include <QMouseEvent>
#include <QPixmap>
#include <QTransform>
#include <QWidget>

#include <algorithm>

namespace ZorvaneClient {
namespace GUI {

namespace {

constexpr double tiltDegrees = 4.0;
constexpr QPoint hotSpot(80, 50);
// A server with many cameras is taller than any screen, and than a pixmap can be.
constexpr int maxCardPictureHeight = 1200;

} // namespace

bool startsDrag(const QMouseEvent &move, QPoint pressPosition)
{
    const bool held = move.buttons().testFlag(Qt::LeftButton) && pressPosition != notPressed;
    const int distance = (move.pos() - pressPosition).manhattanLength();
    return held && distance >= QApplication::startDragDistance();
}

QDrag *tiltedDrag(QObject *source, const QPixmap &picture, QMimeData *data)
{
    auto *drag = new QDrag(source);
    drag->setMimeData(data);
    drag->setPixmap(
        picture.transformed(QTransform().rotate(tiltDegrees), Qt::SmoothTransformation));
    drag->setHotSpot(hotSpot);
    return drag;
}

void dragCard(QWidget *card, QMimeData *data, Qt::DropAction action)
{
    const QRect area(0, 0, card->width(), std::min(card->height(), maxCardPictureHeight));
    tiltedDrag(card->window(), card->grab(area), data)->exec(action);
}

} // namespace GUI
} // namespace ZorvaneClient
