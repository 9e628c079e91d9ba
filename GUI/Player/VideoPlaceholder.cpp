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
    markDropTarget(this, true);
}

void VideoPlaceholder::dragLeaveEvent(QDragLeaveEvent *)
{
    markDropTarget(this, false);
}

void VideoPlaceholder::dropEvent(QDropEvent *event)
{
    markDropTarget(this, false);
    if (event->source() == this && event->possibleActions().testFlag(Qt::MoveAction))
        return;
    const CellDrop drop = takeDrop(event);
    if (drop.camera)
        emit openCamera(drop.camera);
    else if (drop.tile)
        emit swapRequested(drop.tile->row, drop.tile->column);
}

} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
