// SPDX-License-Identifier: MIT
#include "GUI/CardDrag.h"

#include <QDrag>
#include <QMimeData>
#include <QPixmap>
#include <QPoint>
#include <QTransform>
#include <QWidget>

#include <algorithm>

namespace ZorvaneClient {
namespace GUI {

namespace {

constexpr double tiltDegrees = 4.0;
constexpr QPoint hotSpot(80, 50);
// A server with many cameras is taller than any screen, and than a pixmap can be.
constexpr int maxPictureHeight = 1200;

QPixmap tiltedPicture(QWidget *widget)
{
    const QRect area(0, 0, widget->width(), std::min(widget->height(), maxPictureHeight));
    QTransform tilt;
    tilt.rotate(tiltDegrees, Qt::ZAxis);
    return widget->grab(area).transformed(tilt, Qt::SmoothTransformation);
}

} // namespace

void dragCard(QWidget *widget, QMimeData *data, Qt::DropAction action)
{
    // The drag belongs to the window, which outlives the card.
    auto *drag = new QDrag(widget->window());
    drag->setMimeData(data);
    drag->setPixmap(tiltedPicture(widget));
    drag->setHotSpot(hotSpot);
    drag->exec(action);
}

} // namespace GUI
} // namespace ZorvaneClient
