// SPDX-License-Identifier: MIT
// Mouse, drag and drop on a tile.
#include <QApplication>
#include <QDrag>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QPointer>
#include <QTransform>

#include "GUI/Player/DropDecoder.h"
#include "GUI/Player/VideoWidget.h"
#include "GUI/Player/VideoWidgetPrivate.h"

namespace ZorvaneClient {
namespace GUI {
namespace Player {

using namespace Internal;

namespace {

constexpr qreal dragTiltDegrees = 4.0;
constexpr QPoint dragHotSpot(80, 50);

} // namespace

void VideoWidget::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    d->pressX = event->pos().x();
    d->pressY = event->pos().y();
}

void VideoWidget::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    emit clicked(d->camera);
    dumpState();
}

void VideoWidget::mouseMoveEvent(QMouseEvent *event)
{
    if (!(event->buttons() & Qt::LeftButton))
        return;
    const QPoint moved = event->pos() - QPoint(d->pressX, d->pressY);
    if (moved.manhattanLength() >= QApplication::startDragDistance())
        dragTile();
}

void VideoWidget::dragTile()
{
    auto *drag = new QDrag(this);
    drag->setMimeData(tileMimeData(position()));
    drag->setPixmap(
        grab().transformed(QTransform().rotate(dragTiltDegrees), Qt::SmoothTransformation));
    drag->setHotSpot(dragHotSpot);
    const QPointer<VideoWidget> guard(this); // the grid may be cleared in the drag's own loop
    d->isDragging = true;
    update();
    drag->exec(Qt::MoveAction);
    if (!guard)
        return;
    d->isDragging = false;
    update();
}

void VideoWidget::dragEnterEvent(QDragEnterEvent *event)
{
    if (!acceptsDrag(*event, *this)) {
        event->ignore();
        return;
    }
    event->acceptProposedAction();
    d->isDropTarget = true;
    update();
}

void VideoWidget::dragLeaveEvent(QDragLeaveEvent *)
{
    d->isDropTarget = false;
    update();
}

void VideoWidget::dropEvent(QDropEvent *event)
{
    d->isDropTarget = false;
    update();
    if (event->source() == this) {
        event->acceptProposedAction();
    } else if (event->proposedAction() == Qt::CopyAction) {
        event->acceptProposedAction();
        const API::CameraPtr camera = droppedCamera(*event->mimeData());
        if (camera && camera != d->camera)
            emit openCamera(camera);
    } else if (event->proposedAction() == Qt::MoveAction) {
        event->acceptProposedAction();
        API::LayoutPoint cell;
        if (readDroppedCell(*event->mimeData(), cell))
            emit swapRequested(cell.row, cell.column);
    }
}

} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
