// SPDX-License-Identifier: MIT
#include "GUI/LayoutWidget.h"

#include <QDebug>

#include "API/Camera.h"
#include "API/Layout.h"
#include "App/Environment.h"
#include "GUI/GridRules.h"
#include "GUI/LayoutWidgetPrivate.h"
#include "GUI/Player/PlayerNotification.h"
#include "GUI/Player/VideoPlaceholder.h"
#include "GUI/Player/VideoWidget.h"
#include "GUI/StyleBackground.h"

namespace ZorvaneClient {
namespace GUI {

using Player::VideoPlaceholder;
using Player::VideoWidget;

namespace {

constexpr int gridMarginPixels = 2;
constexpr int gridSpacingPixels = 2;
const QColor gridBackground(41, 44, 49, 255);

} // namespace

LayoutWidget::LayoutWidget(QWidget *parent) : QWidget(parent), d(new Internal::LayoutWidgetPrivate)
{
    setObjectName(QStringLiteral("LayoutWidget"));
    setProperty("drop", false);
    // Once a sheet gives the widget a border, or none, its palette no longer fills it.
    setStyleSheet(
        QStringLiteral("#LayoutWidget { background-color: rgb(41, 44, 49); }"
                       "#LayoutWidget[drop=\"true\"] { border: 2px solid rgb(25, 134, 243); }"
                       "#LayoutWidget[drop=\"false\"] { border: none; }"));
    QPalette colours = palette();
    colours.setColor(QPalette::Window, gridBackground);
    setPalette(colours);
    setAutoFillBackground(true);
    setAcceptDrops(true);
    makeGrid();
}

LayoutWidget::~LayoutWidget()
{
    delete d->grid;
    // The tiles end their children while the grid's record is still there.
    qDeleteAll(findChildren<QObject *>(QString(), Qt::FindDirectChildrenOnly));
}

API::LayoutPtr LayoutWidget::workingLayout() const
{
    return d->workingLayout;
}

API::LayoutPtr LayoutWidget::savedLayout() const
{
    return d->savedLayout;
}

bool LayoutWidget::isPaused() const
{
    return d->isPaused;
}

bool LayoutWidget::isPlaying() const
{
    for (const VideoWidget *tile : qAsConst(d->players)) {
        if (tile->isPlaying())
            return true;
    }
    return false;
}

int LayoutWidget::playerCount() const
{
    return static_cast<int>(d->players.size());
}

QList<VideoWidget *> LayoutWidget::players() const
{
    return d->players.values();
}

VideoWidget *LayoutWidget::player(const API::CameraPtr &camera) const
{
    return d->players.value(camera, nullptr);
}

QDateTime LayoutWidget::earliestPlaybackTime() const
{
    QDateTime earliest = App::Environment::now();
    for (const VideoWidget *tile : qAsConst(d->players)) {
        if (tile->isPlaying() && tile->playbackTime() < earliest)
            earliest = tile->playbackTime();
    }
    return earliest;
}

void LayoutWidget::setTime(QDateTime time)
{
    for (VideoWidget *tile : qAsConst(d->players))
        tile->setTime(time);
}

void LayoutWidget::exportArchive(const API::CameraPtr &camera, const QDateTime &start,
                                 const QDateTime &end)
{
    if (VideoWidget *tile = player(camera))
        tile->exportFragment(start, end);
}

void LayoutWidget::cancelExport(const API::CameraPtr &camera)
{
    if (VideoWidget *tile = player(camera))
        tile->cancelExport();
}

void LayoutWidget::makeGrid()
{
    d->grid = new QGridLayout;
    d->grid->setContentsMargins(gridMarginPixels, gridMarginPixels, gridMarginPixels,
                                gridMarginPixels);
    d->grid->setSpacing(gridSpacingPixels);
    setLayout(d->grid);
}

void LayoutWidget::ensureWorkingCopy()
{
    if (d->workingLayout != d->savedLayout)
        return;
    d->workingLayout =
        d->workingLayout ? API::LayoutPtr::create(*d->workingLayout) : API::LayoutPtr::create();
}

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
    ensureWorkingCopy();
    VideoWidget *tile = createTile(camera);
    tile->setPosition(position.row, position.column);
    tile->setSpan(rowSpan, columnSpan);
    d->grid->addWidget(tile, position.row, position.column, rowSpan, columnSpan);
    d->workingLayout->setCamera(camera, position.row, position.column, rowSpan, columnSpan);
    emit layoutModified();
    emit cameraAdded(camera);
}

void LayoutWidget::addCamera(API::CameraPtr camera)
{
    if (auto *placeholder = qobject_cast<VideoPlaceholder *>(sender())) {
        qDebug() << "Trigger - Placeholder";
        const API::LayoutPoint position = d->cellOf(placeholder);
        if (position.row < 0)
            return;
        releasePlaceholder(placeholder);
        addCamera(camera, position, placeholder->span());
    } else if (auto *tile = qobject_cast<VideoWidget *>(sender())) {
        qDebug() << "Trigger - Video Widget";
        const API::LayoutPoint position = tile->position();
        const API::CellSize span = tile->span();
        removePlayer(tile);
        releasePlaceholder(d->placeholderAt(position.row, position.column));
        addCamera(camera, position, span);
    } else {
        qDebug() << "Trigger - Self (server dropped)";
        addToFreeCell(camera);
    }
}

void LayoutWidget::addToFreeCell(const API::CameraPtr &camera)
{
    if (d->workingLayout) {
        for (int row = 0; row < d->workingLayout->rows(); ++row) {
            for (int column = 0; column < d->workingLayout->columns(); ++column) {
                if (d->workingLayout->cellAt(row, column).camera)
                    continue;
                releasePlaceholder(d->placeholderAt(row, column));
                addCamera(camera, API::LayoutPoint{column, row}, API::CellSize{});
                return;
            }
        }
    }
    qDebug() << "No place to add another camera";
}

void LayoutWidget::releasePlaceholder(VideoPlaceholder *placeholder)
{
    if (!placeholder)
        return;
    d->grid->removeWidget(placeholder);
    placeholder->hide();
    placeholder->deleteLater();
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
    ensureWorkingCopy();
    d->players.remove(camera, widget);
    const API::LayoutPoint position = widget->position();
    const API::CellSize span = widget->span();
    d->grid->removeWidget(widget);
    addPlaceholder(position.row, position.column, span.rows, span.columns);
    d->workingLayout->clearCell(position.row, position.column);
    // Its player ends now, before those of the next layout start.
    widget->stop();
    // The tile is in the middle of its own signal when its close button brought us here, and
    // what follows may clear the whole grid: it must not be found among the children then.
    widget->hide();
    widget->setParent(nullptr);
    widget->deleteLater();
    emit layoutModified();
    emit cameraClosed(camera);
}

void LayoutWidget::setActiveCamera(API::CameraPtr camera)
{
    for (VideoWidget *tile : qAsConst(d->players))
        tile->setActive(false);
    const QList<VideoWidget *> tiles = d->players.values(camera);
    for (VideoWidget *tile : tiles)
        tile->setActive(true);
}

void LayoutWidget::setSoundVolume(int volume)
{
    for (VideoWidget *tile : qAsConst(d->players))
        tile->setSoundVolume(volume);
}

void LayoutWidget::enableSound(bool enable)
{
    for (VideoWidget *tile : qAsConst(d->players))
        tile->enableSound(enable);
}

void LayoutWidget::updateQuality()
{
    d->autoQuality = true;
    if (!d->workingLayout)
        return;
    const GridSize size{d->workingLayout->rows(), d->workingLayout->columns()};
    for (VideoWidget *tile : qAsConst(d->players))
        tile->setQuality(tileQuality(size, tile->span().rows, tile->span().columns));
}

void LayoutWidget::updateQuality(int quality)
{
    d->autoQuality = false;
    for (VideoWidget *tile : qAsConst(d->players))
        tile->setQuality(quality);
}

void LayoutWidget::openLayout(API::LayoutPtr layout)
{
    if (layout && d->workingLayout && *layout == *d->workingLayout) {
        qDebug() << "layouts equal";
        playLive();
        return;
    }
    clear();
    d->workingLayout = layout;
    d->savedLayout = layout;
    const int rows = layout ? layout->rows() : 0;
    const int columns = layout ? layout->columns() : 0;
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            const API::LayoutCell cell = layout->cellAt(row, column);
            // Rows are taken for columns here, and columns for rows: a reopened tile comes back
            // transposed, and stored layouts rely on that.
            if (cell.camera)
                addCamera(cell.camera, API::LayoutPoint{column, row},
                          API::CellSize{cell.rowSpan(), cell.columnSpan()});
            else
                addPlaceholder(row, column, cell.columnSpan(), cell.rowSpan());
        }
    }
    emit layoutModified();
}

void LayoutWidget::resizeLayout(int rows, int columns)
{
    const API::LayoutPtr remembered = d->savedLayout;
    const auto resized =
        d->workingLayout ? API::LayoutPtr::create(*d->workingLayout) : API::LayoutPtr::create();
    resized->resize(rows, columns);
    openLayout(resized);
    d->savedLayout = remembered;
    if (d->autoQuality)
        updateQuality();
}

void LayoutWidget::playLive()
{
    for (VideoWidget *tile : qAsConst(d->players))
        tile->playLive();
}

void LayoutWidget::stop()
{
    for (VideoWidget *tile : qAsConst(d->players))
        tile->stop();
}

void LayoutWidget::pause()
{
    d->isPaused = true;
    for (VideoWidget *tile : qAsConst(d->players))
        tile->pause();
}

void LayoutWidget::unpause()
{
    d->isPaused = false;
    for (VideoWidget *tile : qAsConst(d->players))
        tile->unpause();
}

void LayoutWidget::setArchiveMode()
{
    for (VideoWidget *tile : qAsConst(d->players))
        tile->setArchiveMode(true);
}

void LayoutWidget::clear()
{
    const QList<API::CameraPtr> cameras = d->players.keys();
    for (const API::CameraPtr &camera : cameras)
        removeCamera(camera);
    d->players.clear();
    delete d->grid;
    d->grid = nullptr;
    // A placeholder or a hint may be in the middle of its own signal.
    const QList<QWidget *> widgets = findChildren<QWidget *>(QString(), Qt::FindDirectChildrenOnly);
    for (QWidget *widget : widgets) {
        widget->hide();
        widget->setParent(nullptr);
        widget->deleteLater();
    }
    d->hints.clear();
    makeGrid();
}

void LayoutWidget::saveLayout(QString layoutName)
{
    if (!d->workingLayout)
        return;
    d->workingLayout->setName(layoutName);
    if (d->savedLayout)
        *d->savedLayout = *d->workingLayout;
    else
        d->savedLayout = d->workingLayout;
    d->workingLayout = d->savedLayout;
}

void LayoutWidget::onMsecsAdded(qlonglong delta)
{
    const auto *tile = qobject_cast<VideoWidget *>(sender());
    if (!tile)
        return;
    // Only the tile that is furthest behind drives the shared clock.
    const QDateTime previousTime = tile->playbackTime().addMSecs(-delta);
    if (earliestPlaybackTime() < previousTime)
        return;
    emit msecsAdded(delta);
}

void LayoutWidget::paintEvent(QPaintEvent *)
{
    drawStyleBackground(*this);
}

void LayoutWidget::resizeEvent(QResizeEvent *event)
{
    updateHintPositions();
    QWidget::resizeEvent(event);
}

} // namespace GUI
} // namespace ZorvaneClient
