// SPDX-License-Identifier: MIT
// Live and archive play of all tiles at once, and the export of a fragment.
#include "GUI/MainWindow.h"

#include <chrono>

#include "API/Camera.h"
#include "App/Environment.h"
#include "GUI/ArchiveControlPanel.h"
#include "GUI/ControlPanel.h"
#include "GUI/LayoutWidget.h"
#include "GUI/Player/VideoWidget.h"
#include "GUI/Timeline.h"

namespace ZorvaneClient {
namespace GUI {

using Player::VideoWidget;

namespace {

constexpr std::chrono::milliseconds tickInterval{1000};
/// A tile further ahead of the cursor is held ...
constexpr qint64 holdAheadMs = 3000;
/// ... until it is less than this ahead.
constexpr qint64 releaseAheadMs = 1500;

bool hasToWait(const VideoWidget &tile, const QDateTime &position)
{
    const qint64 aheadMs = position.msecsTo(tile.playbackTime());
    return tile.isPaused() ? aheadMs >= releaseAheadMs : aheadMs > holdAheadMs;
}

} // namespace

void MainWindow::hideArchivePanels()
{
    archiveControlPanel->hide();
    timeline->hide();
    controlPanel->hideRecordsControls();
}

void MainWindow::showArchivePanels()
{
    archiveControlPanel->show();
    timeline->show();
    controlPanel->showRecordsControls();
}

void MainWindow::prepareToLive()
{
    const QDateTime now = App::Environment::now();
    timeline->setSliderVisible(false);
    timeline->setCurrentValue(now);
    hideArchivePanels();
    exportFlow.unmark();
    controlPanel->setTime(now);
    controlPanel->showLiveLabel();
    unpause();
    archiveMode = false;
    // Last: the slider's move tells of a new speed, which must find live play.
    controlPanel->resetSpeed();
}

void MainWindow::playLive()
{
    prepareToLive();
    layoutWidget->playLive();
}

void MainWindow::pause()
{
    if (layoutWidget->isPaused())
        return;
    layoutWidget->pause();
    controlPanel->showPlayButton();
}

void MainWindow::unpause()
{
    if (!layoutWidget->isPaused())
        return;
    layoutWidget->unpause();
    // Live can't resume where it was.
    if (!archiveMode)
        layoutWidget->playLive();
    controlPanel->showPauseButton();
}

void MainWindow::updateDate(QDate date)
{
    timeline->changeDate(date);
}

void MainWindow::updatePlaylist()
{
    playlist = timeline->playlistForCameras(timeline->currentValue());
}

void MainWindow::onPlayArchive(QDateTime time)
{
    unpause();
    layoutWidget->stop();
    timeline->setCurrentValue(time);
    timeline->setSliderVisible(true);
    updatePlaylist();
    layoutWidget->setArchiveMode();
    layoutWidget->setTime(time);
    controlPanel->showDateLabel();
    controlPanel->setTime(time);
    archiveMode = true;
    playArchive();
    // One more with each jump; a tick that finds nothing to do costs next to nothing.
    startTimer(tickInterval);
}

void MainWindow::timerEvent(QTimerEvent *)
{
    if (archiveMode)
        playArchive();
}

void MainWindow::playArchive()
{
    if (layoutWidget->isPaused())
        return;
    // Where every tile has run out of its record, all jump over the gap together.
    if (!layoutWidget->isPlaying() && !playlist.isEmpty())
        timeline->setCurrentValue(playlist.first()->start);
    const QDateTime position = timeline->currentValue();
    startDueSpans(position);
    keepInStep(position);
}

void MainWindow::startDueSpans(const QDateTime &position)
{
    while (!playlist.isEmpty() && position >= playlist.first()->start) {
        const PlaylistItemPtr item = playlist.takeFirst();
        if (VideoWidget *tile = layoutWidget->player(item->camera))
            tile->playArchive(item->start, item->end, controlPanel->speed());
    }
}

void MainWindow::keepInStep(const QDateTime &position)
{
    const QList<VideoWidget *> tiles = layoutWidget->players();
    int playing = 0;
    int held = 0;
    for (VideoWidget *tile : tiles) {
        if (!tile->isPlaying()) {
            restartTile(tile, position);
            continue;
        }
        ++playing;
        const bool waits = hasToWait(*tile, position);
        if (waits)
            ++held;
        if (waits && !tile->isPaused())
            tile->pause();
        else if (!waits && tile->isPaused())
            tile->unpause();
    }
    if (playing == 0 || playing != held)
        return;
    // Nobody is left to move the cursor that they wait for.
    for (VideoWidget *tile : tiles) {
        if (tile->isPlaying())
            tile->unpause();
    }
}

void MainWindow::restartTile(VideoWidget *tile, const QDateTime &position)
{
    if (tile->camera()->isArchiveShared())
        tile->playArchive(position, controlPanel->speed());
    else
        tile->showError(tr("Archive is not shared"));
}

void MainWindow::updateTimeline(qlonglong)
{
    const QDateTime time = layoutWidget->earliestPlaybackTime();
    if (timeline->currentValue().date() < time.date())
        archiveControlPanel->setDate(time.date());
    timeline->setCurrentValue(time);
    controlPanel->setTime(time);
}

void MainWindow::setSpeed(int)
{
    if (archiveMode)
        onPlayArchive(timeline->currentValue());
}

void MainWindow::setExportMode()
{
    exportFlow.mark();
}

void MainWindow::setControlMode()
{
    exportFlow.unmark();
}

void MainWindow::exportArchive()
{
    exportFlow.start();
}

void MainWindow::cancelExport()
{
    exportFlow.cancel();
}

void MainWindow::onExportStarted()
{
    exportFlow.showStarted();
}

void MainWindow::onExportPercentDone(int percent)
{
    controlPanel->exportPercentDone(percent);
}

void MainWindow::onExportDone(QString)
{
    exportFlow.end();
}

void MainWindow::onExportError(QString)
{
    exportFlow.end();
}

} // namespace GUI
} // namespace ZorvaneClient
