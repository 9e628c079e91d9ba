// SPDX-License-Identifier: MIT
// Mouse, drag and drop on a tile.
#include <QDrag>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMouseEvent>
#include <QPointer>

#include "GUI/DragFormats.h"
#include "GUI/Player/CellDrop.h"
#include "GUI/Player/VideoWidget.h"
#include "GUI/Player/VideoWidgetPrivate.h"
#include "GUI/TiltedDrag.h"

namespace ZorvaneClient {
namespace GUI {
namespace Player {

using namespace Internal;

void VideoWidget::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    setPressPosition(event->pos());
    d->isPanning = isZoomed();
}

void VideoWidget::setPressPosition(QPoint position)
{
    d->pressX = position.x();
    d->pressY = position.y();
}

void VideoWidget::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    d->isPanning = false;
    showZoom();
    emit clicked(d->camera);
    dumpState();
}

void VideoWidget::mouseMoveEvent(QMouseEvent *event)
{
    const bool isHeld = event->buttons().testFlag(Qt::LeftButton);
    // A pan stays one to its end, also when the picture goes meanwhile.
    if (isHeld && d->pressPosition() != notPressed && isZoomed())
        d->isPanning = true;
    if (d->isPanning)
        panTo(event->pos());
    else if (startsDrag(*event, d->pressPosition()))
        dragTile();
}

void VideoWidget::dragTile()
{
    emit dragStarting();
    QDrag *drag = tiltedDrag(this, grab(), tileDrag(position()));
    const QPointer<VideoWidget> guard(this); // the grid may be cleared in the drag's own loop
    d->isDragging = true;
    update();
    drag->exec(Qt::MoveAction);
    if (!guard)
        return;
    d->isDragging = false;
    update();
    emit dragEnded();
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
        return;
    }
    const CellDrop drop = takeDrop(event);
    if (drop.camera && drop.camera != d->camera)
        emit openCamera(drop.camera);
    else if (drop.tile)
        emit swapRequested(drop.tile->row, drop.tile->column);
}

} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
