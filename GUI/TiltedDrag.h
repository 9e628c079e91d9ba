// SPDX-License-Identifier: MIT
#pragma once

#include <Qt>

class QDrag;
class QMimeData;
class QObject;
class QPixmap;
class QWidget;

namespace ZorvaneClient {
namespace GUI {

/// A drag, still to be started, that shows `picture` tilted under the pointer and takes `data`
/// over. It belongs to `source`, which its targets can ask for.
QDrag *tiltedDrag(QObject *source, const QPixmap &picture, QMimeData *data);

/// Drags `data`, which it takes over, under the picture of a card of the side bar; returns when
/// the drag is over. The source is the card's window: a refresh of the roster may delete the
/// card meanwhile.
void dragCard(QWidget *card, QMimeData *data, Qt::DropAction action);

} // namespace GUI
} // namespace ZorvaneClient
