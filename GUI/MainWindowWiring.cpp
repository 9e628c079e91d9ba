// SPDX-License-Identifier: MIT
// Who hears whom in the window, by the part that tells.
#include "GUI/MainWindow.h"

#include "API/Camera.h"
#include "API/Layout.h"
#include "API/Server.h"
#include "GUI/ArchiveControlPanel.h"
#include "GUI/ControlPanel.h"
#include "GUI/InfoPanel.h"
#include "GUI/LayoutListWidget.h"
#include "GUI/LayoutWidget.h"
#include "GUI/RosterWidget.h"
#include "GUI/SettingsWidget.h"
#include "GUI/SideBar.h"
#include "GUI/Timeline.h"
#include "GUI/ToolBar.h"

namespace ZorvaneClient {
namespace GUI {

void MainWindow::connectSide()
{
    RosterWidget *roster = sideBar->rosterWidget();
    connect(roster, &RosterWidget::openCamera, this, &MainWindow::openCamera);
    connect(roster, &RosterWidget::addToLayout, this, &MainWindow::addToLayout);
    connect(roster, &RosterWidget::openInNewWindow, this,
            QOverload<API::CameraPtr>::of(&MainWindow::openInNewWindow));

    LayoutListWidget *layoutList = sideBar->layoutListWidget();
    connect(layoutList, &LayoutListWidget::openLayout, this, &MainWindow::openLayout);
    connect(layoutList, &LayoutListWidget::openInNewWindow, this,
            QOverload<API::LayoutPtr>::of(&MainWindow::openInNewWindow));
    connect(layoutList, &LayoutListWidget::addLayoutButtonClicked, this,
            &MainWindow::openNewLayout);

    SettingsWidget *settings = sideBar->settingsWidget();
    connect(settings, &SettingsWidget::serverAdded, roster, &RosterWidget::updateRoster);
    connect(roster, &RosterWidget::editServer, settings, &SettingsWidget::editServer);

    connect(sideBar, &SideBar::signout, this, &MainWindow::signout);
    connect(sideBar, &SideBar::hideRequest, this, &MainWindow::hideRosterAndToolbar);
    connect(toolBar, &ToolBar::liveClicked, this, &MainWindow::setRosterMode);
    connect(toolBar, &ToolBar::layoutsClicked, this, &MainWindow::setLayoutsMode);
    connect(toolBar, &ToolBar::settingsClicked, this, &MainWindow::setSettingsMode);
}

void MainWindow::connectInfoPanel()
{
    connect(infoPanel, &InfoPanel::showRequest, this, &MainWindow::showRosterAndToolbar);
    connect(infoPanel, &InfoPanel::editMode, this, &MainWindow::startLayoutEditor);
    connect(infoPanel, &InfoPanel::layoutSaved, this, &MainWindow::saveLayout);
    connect(infoPanel, &InfoPanel::layoutCancelled, this, &MainWindow::cancelLayout);
    connect(infoPanel, &InfoPanel::layoutSizeChanged, this, &MainWindow::resizeLayout);
    connect(infoPanel, &InfoPanel::cloneWindowClicked, this, &MainWindow::clone);
    connect(infoPanel, &InfoPanel::closeLayout, this, &MainWindow::closeCurrentView);
    connect(infoPanel, &InfoPanel::shownNameChanged, this, &MainWindow::showTitle);
}

void MainWindow::connectControlPanel()
{
    ControlPanel *panel = controlPanel;
    connect(panel, &ControlPanel::showRecordsButtonClicked, this, &MainWindow::showArchivePanels);
    connect(panel, &ControlPanel::hideRecordsButtonClicked, this, &MainWindow::hideArchivePanels);
    connect(panel, &ControlPanel::liveButtonClicked, this, &MainWindow::playLive);
    connect(panel, &ControlPanel::pause, this, &MainWindow::pause);
    connect(panel, &ControlPanel::play, this, &MainWindow::unpause);
    connect(panel, &ControlPanel::speedChanged, this, &MainWindow::setSpeed);
    connect(panel, &ControlPanel::momentChosen, this, &MainWindow::seek);
    connect(panel, &ControlPanel::soundVolumeChanged, this, &MainWindow::volumeChanged);
    connect(panel, &ControlPanel::soundEnabled, this, &MainWindow::soundEnabled);
    connect(panel, &ControlPanel::setLowQuality, this, &MainWindow::setLowQuality);
    connect(panel, &ControlPanel::setMidQuality, this, &MainWindow::setMidQuality);
    connect(panel, &ControlPanel::setHighQuality, this, &MainWindow::setHighQuality);
    connect(panel, &ControlPanel::setAutoQuality, this, &MainWindow::setAutoQuality);
    connect(panel, &ControlPanel::fullscreenButtonClicked, this, &MainWindow::onFullscreen);
    connect(panel, &ControlPanel::exportModeButtonClicked, this, &MainWindow::setExportMode);
    connect(panel, &ControlPanel::exportButtonClicked, this, &MainWindow::exportArchive);
    connect(panel, &ControlPanel::cancelExportButtonClicked, this, &MainWindow::cancelExport);
}

/// The strip of the archive and the panel above it.
void MainWindow::connectStrip()
{
    ArchiveControlPanel *panel = archiveControlPanel;
    connect(panel, &ArchiveControlPanel::dateChanged, this, &MainWindow::updateDate);
    connect(panel, &ArchiveControlPanel::zoomedIn, timeline, &Timeline::zoomIn);
    connect(panel, &ArchiveControlPanel::zoomedOut, timeline, &Timeline::zoomOut);
    connect(panel, &ArchiveControlPanel::zoomed, timeline, &Timeline::zoom);
    connect(timeline, &Timeline::zoomed, panel, &ArchiveControlPanel::zoom);
    connect(timeline, &Timeline::playTime, this, &MainWindow::onPlayArchive);
    connect(timeline, &Timeline::recordsUpdated, this, &MainWindow::updatePlaylist);
    connect(timeline, &Timeline::exportEnabled, controlPanel, &ControlPanel::enableExport);
}

void MainWindow::connectGrid()
{
    connect(layoutWidget, &LayoutWidget::cameraAdded, this, &MainWindow::onCameraAdded);
    connect(layoutWidget, &LayoutWidget::serverAdded, this, &MainWindow::onServerAdded);
    connect(layoutWidget, &LayoutWidget::cameraClosed, this, &MainWindow::closeCamera);
    connect(layoutWidget, &LayoutWidget::clicked, this, &MainWindow::activateCamera);
    connect(layoutWidget, &LayoutWidget::msecsAdded, this, &MainWindow::updateTimeline);
    connect(layoutWidget, &LayoutWidget::layoutModified, this, &MainWindow::layoutModified);
    connect(layoutWidget, &LayoutWidget::layoutDropped, this, &MainWindow::openLayout);
    connect(layoutWidget, &LayoutWidget::exportStarted, this, &MainWindow::onExportStarted);
    connect(layoutWidget, &LayoutWidget::exportPercentDone, this, &MainWindow::onExportPercentDone);
    connect(layoutWidget, &LayoutWidget::exportDone, this, &MainWindow::onExportDone);
    connect(layoutWidget, &LayoutWidget::exportError, this, &MainWindow::onExportError);
}

} // namespace GUI
} // namespace ZorvaneClient
