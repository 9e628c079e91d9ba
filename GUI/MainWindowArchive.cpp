// SPDX-License-Identifier: MIT
// The archive of all tiles at once, and the export of a fragment of it.
#include "GUI/MainWindow.h"

#include <QDebug>

#include "API/Camera.h"
#include "GUI/ArchiveControlPanel.h"
#include "GUI/ControlPanel.h"
#include "GUI/LayoutWidget.h"
#include "GUI/Player/VideoWidget.h"
#include "GUI/Timeline.h"

namespace ZorvaneClient {
namespace GUI {

using Player::VideoWidget;

namespace {

constexpr int tickMs = 1000;
/// A tile further ahead of the cursor is held ...
constexpr qint64 holdAheadMs = 3000;
/// ... until it is less than this ahead.
constexpr qint64 releaseAheadMs = 1500;

} // namespace

void MainWindow::connectArchive()
{
    connect(controlPanel, &ControlPanel::showRecordsButtonClicked, this,
            &MainWindow::showArchivePanels);
    connect(controlPanel, &ControlPanel::hideRecordsButtonClicked, this,
            &MainWindow::hideArchivePanels);
    connect(controlPanel, &ControlPanel::liveButtonClicked, this, &MainWindow::playLive);
    connect(controlPanel, &ControlPanel::speedChanged, this, &MainWindow::setSpeed);
    connect(archiveControlPanel, &ArchiveControlPanel::dateChanged, this, &MainWindow::updateDate);
    connect(archiveControlPanel, &ArchiveControlPanel::zoomedIn, timeline, &Timeline::zoomIn);
    connect(archiveControlPanel, &ArchiveControlPanel::zoomedOut, timeline, &Timeline::zoomOut);
    connect(timeline, &Timeline::zoomed, archiveControlPanel, &ArchiveControlPanel::zoom);
    connect(archiveControlPanel, &ArchiveControlPanel::zoomed, timeline, &Timeline::zoom);
    connect(timeline, &Timeline::playTime, this, &MainWindow::onPlayArchive);
    connect(timeline, &Timeline::recordsUpdated, this, &MainWindow::updatePlaylist);
}

void MainWindow::connectExport()
{
    connect(controlPanel, &ControlPanel::exportModeButtonClicked, this, &MainWindow::setExportMode);
    connect(controlPanel, &ControlPanel::cancelExportButtonClicked, this,
            &MainWindow::cancelExport);
    connect(controlPanel, &ControlPanel::exportButtonClicked, this, &MainWindow::exportArchive);
    connect(layoutWidget, &LayoutWidget::exportDone, this, &MainWindow::onExportDone);
    connect(layoutWidget, &LayoutWidget::exportError, this, &MainWindow::onExportError);
    connect(layoutWidget, &LayoutWidget::exportPercentDone, this, &MainWindow::onExportPercentDone);
    connect(layoutWidget, &LayoutWidget::exportStarted, this, &MainWindow::onExportStarted);
    connect(timeline, &Timeline::exportEnabled, controlPanel, &ControlPanel::enableExport);
}

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
    startTimer(tickMs);
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
    const QDateTime holdAfter = position.addMSecs(holdAheadMs);
    const QDateTime releaseBefore = position.addMSecs(releaseAheadMs);
    const QList<VideoWidget *> tiles = layoutWidget->players();
    int playing = 0;
    int held = 0;
    for (VideoWidget *tile : tiles) {
        if (!tile->isPlaying()) {
            restartTile(tile, position);
            continue;
        }
        ++playing;
        if (!tile->isPaused()) {
            if (holdAfter < tile->playbackTime()) {
                tile->pause();
                ++held;
            }
        } else if (tile->playbackTime() < releaseBefore) {
            tile->unpause();
        } else {
            ++held;
        }
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
    if (!timeline->enterSelectionMode(false, false))
        return;
    if (!exportCamera)
        exportCamera = timeline->activeCamera();
    archiveControlPanel->showSelectFragmentMessage();
    controlPanel->setExportMode();
}

void MainWindow::setControlMode()
{
    timeline->leaveSelectionMode();
    controlPanel->setNormalMode();
}

void MainWindow::exportArchive()
{
    const API::CameraPtr camera = timeline->activeCamera();
    if (!camera || !camera->isExportEnabled()) {
        qDebug() << "archive export disabled";
        return;
    }
    exportCamera = camera;
    timeline->setSelectionEditable(false);
    layoutWidget->exportArchive(camera, timeline->selectionStart(), timeline->selectionEnd());
}

void MainWindow::cancelExport()
{
    if (const API::CameraPtr camera = timeline->activeCamera())
        layoutWidget->cancelExport(camera);
    // Another one may have been activated since.
    if (exportCamera)
        layoutWidget->cancelExport(exportCamera);
    endExport();
}

void MainWindow::endExport()
{
    exportCamera.clear();
    archiveControlPanel->hideMessage();
    timeline->leaveSelectionMode();
    controlPanel->setNormalMode();
}

/// The tile is gone, and nothing else will tell of its export.
void MainWindow::endExportOf(const API::CameraPtr &camera)
{
    if (camera != exportCamera)
        return;
    endExport();
    controlPanel->setEmptyMode(!firstCamera());
}

void MainWindow::onExportStarted()
{
    controlPanel->exportStarted();
    archiveControlPanel->showExportingMessage();
}

void MainWindow::onExportPercentDone(int percent)
{
    controlPanel->exportPercentDone(percent);
}

void MainWindow::onExportDone(QString)
{
    endExport();
}

void MainWindow::onExportError(QString)
{
    endExport();
}

} // namespace GUI
} // namespace ZorvaneClient
