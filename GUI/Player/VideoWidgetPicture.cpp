// SPDX-License-Identifier: MIT
// What is seen of a tile: picture, spinner or text, the border and the two bars.
#include <QAction>
#include <QDebug>
#include <QMenu>
#include <QPainter>

#include <utility>

#include "API/Camera.h"
#include "App/Application.h"
#include "GUI/Colours.h"
#include "GUI/IconButton.h"
#include "GUI/Player/DoubleClickFilter.h"
#include "GUI/Player/TilePainter.h"
#include "GUI/Player/VideoWidget.h"
#include "GUI/Player/VideoWidgetPrivate.h"
#include "ui_VideoWidget.h"

namespace ZorvaneClient {
namespace GUI {
namespace Player {

using namespace Internal;

void VideoWidget::showPicture()
{
    hideSpinner();
    const QSize size = d->streamSize();
    if (!FrameFile::hasRoomFor(size) && d->refusedSize != size) {
        d->refusedSize = size;
        qWarning() << "VideoWidget: No frame of" << d->videoWidth << "x" << d->videoHeight
                   << "pixels can be shown";
    }
    d->image = d->frameFile.image(size);
    setPictureSeen(true);
    update();
}

void VideoWidget::clearImage()
{
    // A snapshot is blank then; the fill reaches the frame file, whose memory the image is.
    d->image.fill(Colours::tile());
    setPictureSeen(false);
    update();
}

void VideoWidget::setPictureSeen(bool isSeen)
{
    const bool hadPicture = std::exchange(d->hasPicture, isSeen);
    if (hadPicture != isSeen)
        showZoom();
}

void VideoWidget::showSpinner()
{
    d->errorText.clear();
    clearImage();
    ui->spinnerWidget->start();
}

void VideoWidget::hideSpinner()
{
    ui->spinnerWidget->stop();
    d->errorText.clear();
}

void VideoWidget::showError(const QString &text)
{
    hideSpinner();
    d->errorText = text;
    clearImage();
}

void VideoWidget::orientationChanged()
{
    updateAspectRatio();
    resetZoom();
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
        paintPicture(painter, rect(), picturePlace(), d->image, d->camera->rotation(),
                     d->camera->isMirrored(), d->zoom);
    else
        paintBackground(painter, rect());
    if (d->isNameShown && ui->topBar->isHidden())
        d->nameTag.paint(painter, rect(), font(), d->camera->name(), stateWord());
    if (d->isDragging)
        paintDimming(painter, rect());
    paintBorder(painter, rect(), borderRule().border());
}

void VideoWidget::setNameShown(bool isShown)
{
    d->isNameShown = isShown;
    update();
}

QString VideoWidget::stateText() const
{
    return d->errorText.isEmpty() ? stateWord() : d->errorText;
}

QString VideoWidget::stateWord() const
{
    if (!d->errorText.isEmpty())
        return tr("No picture");
    if (d->state == TileState::Paused)
        return tr("Paused");
    if (d->state == TileState::Error)
        return tr("Interrupted");
    if (!d->hasPicture)
        return tr("Connecting");
    return d->archivePlaying ? tr("Records") : tr("Live");
}

QRect VideoWidget::picturePlace() const
{
    return fitPicture(size(), d->aspectRatio);
}

BorderRule VideoWidget::borderRule() const
{
    BorderRule rule;
    rule.isDropTarget = d->isDropTarget;
    rule.isActive = d->isActive;
    rule.isHovered = d->isHovered;
    if (const auto *application = d->isActive ? App::application() : nullptr) {
        rule.playerCount = application->playerCount();
        rule.cellCount = application->cellCount();
    }
    return rule;
}

void VideoWidget::setUpBars()
{
    for (QWidget *bar : {ui->topBar, ui->bottomBar})
        bar->installEventFilter(new DoubleClickFilter(this));

    auto *menu = new QMenu(ui->settingsButton);
    menu->addAction(ui->actionSettings);
    menu->addAction(ui->actionClose);
    menu->installEventFilter(this);
    ui->settingsButton->setMenu(menu);
    showBars(false);
}

void VideoWidget::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    const QString name = d->camera->name();
    const QString shown =
        ui->cameraName->fontMetrics().elidedText(name, Qt::ElideRight, nameWidth(width()));
    ui->cameraName->setText(shown);
    ui->cameraName->setToolTip(shown == name ? QString() : nameTip(name));
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

} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
