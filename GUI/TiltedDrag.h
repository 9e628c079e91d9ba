// SPDX-License-Identifier: MIT
#pragma once

#include <QPoint>
#include <Qt>

class QDrag;
class QMimeData;
class QMouseEvent;
class QObject;
class QPixmap;
class QWidget;

namespace ZorvaneClient {
namespace GUI {

/// In place of where the left button went down: it isn't, or not here.
constexpr QPoint notPressed(-1, -1);

/// True if the left button is still down and far enough from where it went down.
bool startsDrag(const QMouseEvent &move, QPoint pressPosition);

/// A drag, still to be started, that shows `picture` tilted under the pointer and takes `data`
/// over. It belongs to `source`, which its targets can ask for.
QDrag *tiltedDrag(QObject *source, const QPixmap &picture, QMimeData *data);

/// Drags `data`, which it takes over, under the picture of a card of the side bar; returns when
/// the drag is over. The source is the card's window: a refresh of the roster may delete the
/// card meanwhile.
void dragCard(QWidget *card, QMimeData *data, Qt::DropAction action);

} // namespace GUI
} // namespace ZorvaneClient
