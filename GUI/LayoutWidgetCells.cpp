// SPDX-License-Identifier: MIT
// The edits of single cells: cameras come, go and change places.
#include "GUI/LayoutWidget.h"

#include <QDebug>

#include "API/Camera.h"
#include "API/Layout.h"
#include "GUI/LayoutWidgetPrivate.h"
#include "GUI/Player/VideoPlaceholder.h"
#include "GUI/Player/VideoWidget.h"
#include "GUI/Retire.h"

namespace ZorvaneClient {
namespace GUI {

using Player::VideoPlaceholder;
using Player::VideoWidget;

void LayoutWidget::addPlaceholder(int row, int column, int rowSpan, int columnSpan)
{
    auto *placeholder = new VideoPlaceholder;
    connect(placeholder, &VideoPlaceholder::openCamera, this,
            QOverload<API::CameraPtr>::of(&LayoutWidget::addCamera));
    connect(placeholder, &VideoPlaceholder::swapRequested, this, &LayoutWidget::exchangeCells);
    d->grid->addWidget(placeholder, row, column, rowSpan, columnSpan);
}

VideoWidget *LayoutWidget::createTile(const API::CameraPtr &camera)
{
    auto *tile = new VideoWidget(camera, this);
    connect(tile, &VideoWidget::closed, this, &LayoutWidget::removePlayer);
    connect(tile, &VideoWidget::maximiseRequested, this, &LayoutWidget::toggleMaximised);
    connect(tile, &VideoWidget::dragStarting, this, &LayoutWidget::beginDrag);
    connect(tile, &VideoWidget::dragEnded, this, &LayoutWidget::endDrag);
    connect(tile, &VideoWidget::clicked, this, &LayoutWidget::clicked);
    connect(tile, &VideoWidget::msecsAdded, this, &LayoutWidget::onMsecsAdded);
    connect(tile, &VideoWidget::swapRequested, this, &LayoutWidget::exchangeCells);
    connect(tile, &VideoWidget::openCamera, this,
            QOverload<API::CameraPtr>::of(&LayoutWidget::addCamera));
    connect(tile, &VideoWidget::snapshotSaved, this, &LayoutWidget::showSnapshotHint);
    connect(tile, &VideoWidget::exportDone, this, &LayoutWidget::exportDone);
    connect(tile, &VideoWidget::exportDone, this, &LayoutWidget::showExportDoneHint);
    connect(tile, &VideoWidget::exportError, this, &LayoutWidget::exportError);
    connect(tile, &VideoWidget::exportError, this, &LayoutWidget::showExportErrorHint);
    connect(tile, &VideoWidget::exportPercentDone, this, &LayoutWidget::exportPercentDone);
    connect(tile, &VideoWidget::exportStarted, this, &LayoutWidget::exportStarted);
    tile->setNameShown(d->areNamesShown);
    d->players.insert(camera, tile);
    return tile;
}

void LayoutWidget::addCamera(API::CameraPtr camera, API::LayoutPoint position, API::CellSize span)
{
    if (!camera)
        return;
    // A stored layout can lack a span, and the grid takes an empty one for its whole rest.
    const int rowSpan = qMax(1, span.rows);
    const int columnSpan = qMax(1, span.columns);
    showAllTiles();
    d->ensureWorkingCopy();
    VideoWidget *tile = createTile(camera);
    tile->setAlone(d->isSingleCell());
    tile->setPosition(position.row, position.column);
    tile->setSpan(rowSpan, columnSpan);
    d->grid->addWidget(tile, position.row, position.column, rowSpan, columnSpan);
    d->workingLayout->setCamera(camera, position.row, position.column, rowSpan, columnSpan);
    if (d->givesQuality && d->autoQuality)
        tile->takeQuality(qualityOf(*tile));
    emit layoutModified();
    emit cameraAdded(camera);
}

void LayoutWidget::addCamera(API::CameraPtr camera)
{
    if (!camera)
        return;
    if (auto *placeholder = qobject_cast<VideoPlaceholder *>(sender())) {
        qDebug() << "Trigger - Placeholder";
        replacePlaceholder(placeholder, camera);
    } else if (auto *tile = qobject_cast<VideoWidget *>(sender())) {
        qDebug() << "Trigger - Video Widget";
        replaceTile(tile, camera);
    } else {
        qDebug() << "Trigger - Self (server dropped)";
        addToFreeCell(camera);
    }
}

void LayoutWidget::replacePlaceholder(VideoPlaceholder *placeholder, const API::CameraPtr &camera)
{
    const API::LayoutPoint position = d->cellOf(placeholder);
    if (position.row < 0)
        return;
    const API::CellSize span = placeholder->span();
    retire(placeholder);
    addCamera(camera, position, span);
}

void LayoutWidget::replaceTile(VideoWidget *tile, const API::CameraPtr &camera)
{
    const API::LayoutPoint position = tile->position();
    const API::CellSize span = tile->span();
    removePlayer(tile);
    // Who heard of the closed camera may have opened another layout, in which the cell isn't free.
    VideoPlaceholder *placeholder = d->placeholderAt(position.row, position.column);
    if (!placeholder) {
        addToFreeCell(camera);
        return;
    }
    retire(placeholder);
    addCamera(camera, position, span);
}

void LayoutWidget::addToFreeCell(const API::CameraPtr &camera)
{
    if (d->workingLayout) {
        for (int row = 0; row < d->workingLayout->rows(); ++row) {
            for (int column = 0; column < d->workingLayout->columns(); ++column) {
                if (d->workingLayout->cellAt(row, column).camera)
                    continue;
                retire(d->placeholderAt(row, column));
                addCamera(camera, API::LayoutPoint{column, row}, API::CellSize{});
                return;
            }
        }
    }
    qDebug() << "No place to add another camera";
}

void LayoutWidget::removeCamera(API::CameraPtr camera)
{
    const QList<VideoWidget *> tiles = d->players.values(camera);
    for (VideoWidget *tile : tiles)
        removePlayer(tile);
}

void LayoutWidget::removePlayer(VideoWidget *widget)
{
    const API::CameraPtr camera = widget->camera();
    if (!d->players.contains(camera, widget)) {
        qWarning() << "Camera is not in list";
        return;
    }
    if (widget == d->maximised)
        d->leaveMaximised(); // no other quality for its last moment
    else
        showAllTiles();
    d->owedQualities.remove(widget);
    d->ensureWorkingCopy();
    d->players.remove(camera, widget);
    const API::LayoutPoint position = widget->position();
    const API::CellSize span = widget->span();
    // Its player ends now, before those of the next layout start.
    widget->stop();
    retire(widget);
    addPlaceholder(position.row, position.column, span.rows, span.columns);
    d->workingLayout->clearCell(position.row, position.column);
    emit layoutModified();
    emit cameraClosed(camera);
}

void LayoutWidget::exchangeCells(int row, int column)
{
    auto *target = qobject_cast<QWidget *>(sender());
    VideoWidget *dragged = d->tileAt(row, column);
    if (!target || !dragged || target == dragged)
        return;
    const API::LayoutPoint targetCell = d->cellOf(target);
    if (targetCell.row < 0)
        return;

    showAllTiles();
    d->grid->removeWidget(dragged);
    d->grid->removeWidget(target);
    d->grid->addWidget(target, row, column);
    d->grid->addWidget(dragged, targetCell.row, targetCell.column);
    dragged->setPosition(targetCell.row, targetCell.column);
    if (auto *targetTile = qobject_cast<VideoWidget *>(target))
        targetTile->setPosition(row, column);

    d->ensureWorkingCopy();
    d->workingLayout->swapCells(row, column, targetCell.row, targetCell.column);
    emit layoutModified();
}

} // namespace GUI
} // namespace ZorvaneClient
