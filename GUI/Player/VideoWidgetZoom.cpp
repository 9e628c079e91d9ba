// SPDX-License-Identifier: MIT
// A tile looked at closely: the wheel enlarges its picture, a held button moves it.
#include <QMouseEvent>
#include <QWheelEvent>

#include "GUI/Player/VideoWidget.h"
#include "GUI/Player/VideoWidgetPrivate.h"
#include "GUI/TiltedDrag.h"

namespace ZorvaneClient {
namespace GUI {
namespace Player {

using namespace Internal;

void VideoWidget::setAlone(bool isAlone)
{
    d->isAlone = isAlone;
}

void VideoWidget::resetZoom()
{
    d->zoom.reset();
    showZoom();
}

void VideoWidget::wheelEvent(QWheelEvent *event)
{
    const bool isMeant = d->isAlone || event->modifiers().testFlag(Qt::ControlModifier);
    if (!d->hasPicture || !isMeant) {
        event->ignore();
        return;
    }
    d->zoom.zoomAt(fractionOf(picturePlace(), event->position()),
                   zoomOfWheel(event->angleDelta().y()));
    showZoom();
}

void VideoWidget::mouseDoubleClickEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    setPressPosition(notPressed); // the tile may get another size: what follows is no drag
    d->isPanning = false;
    if (isZoomed())
        resetZoom();
    else
        emit maximiseRequested(this);
}

bool VideoWidget::isZoomed() const
{
    return d->hasPicture && d->zoom.isZoomed();
}

void VideoWidget::panTo(QPoint position)
{
    if (!isZoomed())
        return;
    const QPointF moved = position - d->pressPosition();
    const QSizeF area = picturePlace().size();
    d->zoom.pan(QPointF(moved.x() / area.width(), moved.y() / area.height()));
    setPressPosition(position);
    showZoom();
}

/// The hand says that the picture can be moved.
void VideoWidget::showZoom()
{
    if (isZoomed())
        setCursor(d->isPanning ? Qt::ClosedHandCursor : Qt::OpenHandCursor);
    else
        unsetCursor();
    update();
}

} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
