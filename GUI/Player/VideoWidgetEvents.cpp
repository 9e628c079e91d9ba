// SPDX-License-Identifier: MIT
// The tile as its user meets it: paint, mouse, drag and drop.
#include <QApplication>
#include <QDrag>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QPainter>
#include <QPointer>

#include "API/Camera.h"
#include "App/Application.h"
#include "GUI/DragFormats.h"
#include "GUI/Player/CellDrop.h"
#include "GUI/Player/TilePainter.h"
#include "GUI/Player/VideoWidget.h"
#include "GUI/Player/VideoWidgetPrivate.h"
#include "GUI/TiltedDrag.h"
#include "ui_VideoWidget.h"

namespace ZorvaneClient {
namespace GUI {
namespace Player {

using namespace Internal;

void VideoWidget::orientationChanged()
{
    updateAspectRatio();
    update();
}

void VideoWidget::updateAspectRatio()
{
    d->aspectRatio = aspectRatioOf(d->streamSize(), d->camera->rotation());
}

void VideoWidget::paintEvent(QPaintEvent *event)
{
    QWidget::paintEvent(event);
    QPainter painter(this);
    if (!d->hasPicture)
        paintMessage(painter, rect(), font(), d->errorText);
    else if (isVisible())
        paintPicture(painter, rect(), fitPicture(size(), d->aspectRatio), d->image,
                     d->camera->rotation(), d->camera->isMirrored());
    else
        paintBackground(painter, rect());
    if (d->isDragging)
        paintDimming(painter, rect());
    paintBorder(painter, rect(), borderRule().border());
}

BorderRule VideoWidget::borderRule() const
{
    BorderRule rule;
    rule.isDropTarget = d->isDropTarget;
    rule.isActive = d->isActive;
    rule.isHovered = d->isHovered;
    const auto *application = qobject_cast<App::Application *>(qApp);
    if (d->isActive && application) {
        rule.playerCount = application->playerCount();
        rule.cellCount = application->cellCount();
    }
    return rule;
}

void VideoWidget::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    ui->cameraName->setText(ui->cameraName->fontMetrics().elidedText(
        d->camera->name(), Qt::ElideRight, nameWidth(width())));
}

void VideoWidget::enterEvent(EnterEvent *)
{
    d->isHovered = true;
    showBars(true);
    update();
}

void VideoWidget::leaveEvent(QEvent *)
{
    d->isHovered = false;
    if (!ui->settingsButton->menu()->isVisible())
        showBars(false);
    update();
}

bool VideoWidget::eventFilter(QObject *watched, QEvent *event)
{
    if (watched != ui->settingsButton->menu())
        return QWidget::eventFilter(watched, event);
    if (event->type() != QEvent::Hide)
        return false;
    watched->event(event); // or else the button waits for its menu for ever
    showBars(false);
    return true;
}

void VideoWidget::showBars(bool visible)
{
    ui->topBar->setVisible(visible);
    ui->bottomBar->setVisible(visible);
}

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
    QDrag *drag = tiltedDrag(this, grab(), tileDrag(position()));
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
