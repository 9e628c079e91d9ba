// SPDX-License-Identifier: MIT
// What all tiles of the grid are asked and told at once.
#include "GUI/LayoutWidget.h"

#include <QTimer>

#include <algorithm>

#include "API/Camera.h"
#include "API/Layout.h"
#include "App/Environment.h"
#include "GUI/GridRules.h"
#include "GUI/LayoutWidgetPrivate.h"
#include "GUI/Player/VideoWidget.h"

namespace ZorvaneClient {
namespace GUI {

using Player::VideoWidget;

bool LayoutWidget::isPaused() const
{
    return d->isPaused;
}

bool LayoutWidget::isPlaying() const
{
    return std::any_of(d->players.cbegin(), d->players.cend(),
                       [](const VideoWidget *tile) { return tile->isPlaying(); });
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
    d->owedQualities.clear();
    const GridSize size{d->workingLayout->rows(), d->workingLayout->columns()};
    for (VideoWidget *tile : qAsConst(d->players)) {
        const int quality = tileQuality(size, tile->span().rows, tile->span().columns);
        const bool isMaximised = tile == d->maximised;
        if (isMaximised)
            d->qualityBefore = quality;
        tile->setQuality(isMaximised ? tileQuality(GridSize(), 1, 1) : quality);
    }
}

void LayoutWidget::updateQuality(int quality)
{
    d->autoQuality = false;
    d->qualityBefore = quality;
    d->owedQualities.clear();
    for (VideoWidget *tile : qAsConst(d->players))
        tile->setQuality(quality);
}

bool LayoutWidget::areNamesShown() const
{
    return d->areNamesShown;
}

void LayoutWidget::setNamesShown(bool areShown)
{
    d->areNamesShown = areShown;
    for (VideoWidget *tile : qAsConst(d->players))
        tile->setNameShown(areShown);
}

void LayoutWidget::resetZoom()
{
    for (VideoWidget *tile : qAsConst(d->players))
        tile->resetZoom();
}

void LayoutWidget::playLive()
{
    d->takeOwedQualities();
    for (VideoWidget *tile : qAsConst(d->players))
        tile->playLive();
}

void LayoutWidget::stop()
{
    d->takeOwedQualities();
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
    // Later: what ends the pause may be about to begin all streams anew.
    QTimer::singleShot(0, this, &LayoutWidget::giveOwedQualities);
}

void LayoutWidget::setArchiveMode()
{
    for (VideoWidget *tile : qAsConst(d->players))
        tile->setArchiveMode(true);
}

} // namespace GUI
} // namespace ZorvaneClient
