// SPDX-License-Identifier: MIT
#include "GUI/Player/VideoPlaceholder.h"

#include <QDragEnterEvent>
#include <QDropEvent>

#include "GUI/Player/CellDrop.h"
#include "GUI/StyleBackground.h"
#include "GUI/StyleSheet.h"
#include "ui_VideoPlaceholder.h"

namespace ZorvaneClient {
namespace GUI {
namespace Player {

namespace {

constexpr auto dropProperty = "drop";

} // namespace

VideoPlaceholder::VideoPlaceholder(QWidget *parent) : QWidget(parent), ui(new Ui::VideoPlaceholder)
{
    ui->setupUi(this);
}

VideoPlaceholder::~VideoPlaceholder() = default;

API::CellSize VideoPlaceholder::span() const
{
    return API::CellSize{columnSpan, rowSpan};
}

void VideoPlaceholder::paintEvent(QPaintEvent *)
{
    drawStyleBackground(*this);
}

void VideoPlaceholder::dragEnterEvent(QDragEnterEvent *event)
{
    if (!acceptsDrag(*event, *this)) {
        event->ignore();
        return;
    }
    event->acceptProposedAction();
    if (!property(dropProperty).toBool())
        setDropTarget(true);
}

void VideoPlaceholder::dragLeaveEvent(QDragLeaveEvent *)
{
    setDropTarget(false);
}

void VideoPlaceholder::dropEvent(QDropEvent *event)
{
    setDropTarget(false);
    if (event->source() == this && event->possibleActions().testFlag(Qt::MoveAction))
        return;
    const CellDrop drop = takeDrop(event);
    if (drop.camera)
        emit openCamera(drop.camera);
    else if (drop.tile)
        emit swapRequested(drop.tile->row, drop.tile->column);
}

void VideoPlaceholder::setDropTarget(bool isDropTarget)
{
    setStyleProperty(this, dropProperty, isDropTarget);
}

} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
