// SPDX-License-Identifier: MIT
#include "GUI/MainWindow.h"

#include <QDebug>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QVBoxLayout>

#include "API/Camera.h"
#include "API/Layout.h"
#include "API/Server.h"
#include "App/Environment.h"
#include "App/Settings.h"
#include "App/SettingsKeys.h"
#include "GUI/ArchiveControlPanel.h"
#include "GUI/ControlPanel.h"
#include "GUI/InfoPanel.h"
#include "GUI/LayoutListWidget.h"
#include "GUI/LayoutWidget.h"
#include "GUI/Player/VideoWidget.h"
#include "GUI/RosterWidget.h"
#include "GUI/SettingsWidget.h"
#include "GUI/SideBar.h"
#include "GUI/Timeline.h"
#include "GUI/ToolBar.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

constexpr QSize firstSize(1100, 650);
const QString camerasTab = QStringLiteral("Cameras");
const QString layoutsTab = QStringLiteral("Layouts");

} // namespace

MainWindow::MainWindow(QWidget *parent)
    : QWidget(parent)
    , toolBar(new ToolBar)
    , sideBar(new SideBar)
    , controlPanel(new ControlPanel)
    , infoPanel(new InfoPanel)
    , archiveControlPanel(new ArchiveControlPanel)
    , timeline(new Timeline(App::Environment::now().date()))
    , layoutWidget(new LayoutWidget)
{
    hideArchivePanels();
    connectSide();
    connectPanels();
    connectGrid();
    connectArchive();
    connectExport();
    arrange();
    resize(firstSize);

    const QString openTab = App::settings().value(App::SettingsKey::openTab).toString();
    closeCurrentView();
    if (openTab == layoutsTab)
        setLayoutsMode();
}

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
    connect(infoPanel, &InfoPanel::showRequest, this, &MainWindow::showRosterAndToolbar);
    connect(toolBar, &ToolBar::liveClicked, this, &MainWindow::setRosterMode);
    connect(toolBar, &ToolBar::layoutsClicked, this, &MainWindow::setLayoutsMode);
    connect(toolBar, &ToolBar::settingsClicked, this, &MainWindow::setSettingsMode);
}

void MainWindow::connectPanels()
{
    connect(controlPanel, &ControlPanel::fullscreenButtonClicked, this, &MainWindow::onFullscreen);
    connect(controlPanel, &ControlPanel::pause, this, &MainWindow::pause);
    connect(controlPanel, &ControlPanel::play, this, &MainWindow::unpause);
    connect(controlPanel, &ControlPanel::setLowQuality, this, &MainWindow::setLowQuality);
    connect(controlPanel, &ControlPanel::setMidQuality, this, &MainWindow::setMidQuality);
    connect(controlPanel, &ControlPanel::setHighQuality, this, &MainWindow::setHighQuality);
    connect(controlPanel, &ControlPanel::setAutoQuality, this, &MainWindow::setAutoQuality);
    connect(infoPanel, &InfoPanel::editMode, this, &MainWindow::startLayoutEditor);
    connect(infoPanel, &InfoPanel::layoutSaved, this, &MainWindow::saveLayout);
    connect(infoPanel, &InfoPanel::layoutCancelled, this, &MainWindow::cancelLayout);
    connect(infoPanel, &InfoPanel::layoutSizeChanged, this, &MainWindow::resizeLayout);
    connect(infoPanel, &InfoPanel::cloneWindowClicked, this, &MainWindow::clone);
    connect(infoPanel, &InfoPanel::closeLayout, this, &MainWindow::closeCurrentView);
    connect(controlPanel, &ControlPanel::soundVolumeChanged, this, &MainWindow::volumeChanged);
    connect(controlPanel, &ControlPanel::soundEnabled, this, &MainWindow::soundEnabled);
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
}

void MainWindow::arrange()
{
    auto *centre = new QVBoxLayout;
    centre->setContentsMargins(0, 0, 0, 0);
    centre->setSpacing(0);
    centre->addWidget(infoPanel);
    centre->addWidget(layoutWidget, 1);
    centre->addWidget(archiveControlPanel);
    centre->addWidget(timeline);
    centre->addWidget(controlPanel);

    auto *row = new QHBoxLayout(this);
    row->setContentsMargins(0, 0, 0, 0);
    row->setSpacing(0);
    row->addWidget(toolBar);
    row->addWidget(sideBar);
    row->addLayout(centre, 1);
}

int MainWindow::playerCount() const
{
    return layoutWidget->playerCount();
}

int MainWindow::cellCount() const
{
    const API::LayoutPtr layout = layoutWidget->workingLayout();
    return layout ? layout->rows() * layout->columns() : 0;
}

void MainWindow::setRosterMode()
{
    sideBar->setRosterMode();
    toolBar->setRosterMode();
    App::settings().setValue(App::SettingsKey::openTab, camerasTab);
}

void MainWindow::setLayoutsMode()
{
    sideBar->setLayoutsMode();
    toolBar->setLayoutsMode();
    App::settings().setValue(App::SettingsKey::openTab, layoutsTab);
}

void MainWindow::setSettingsMode()
{
    sideBar->setSettingsMode();
    toolBar->setSettingsMode();
}

void MainWindow::hideRosterAndToolbar()
{
    sideBar->hide();
    toolBar->hide();
    infoPanel->showShowButton();
}

void MainWindow::showRosterAndToolbar()
{
    sideBar->show();
    toolBar->show();
    infoPanel->hideShowButton();
}

QList<API::CameraPtr> MainWindow::layoutCameras() const
{
    QList<API::CameraPtr> cameras;
    const API::LayoutPtr layout = layoutWidget->workingLayout();
    if (!layout)
        return cameras;
    const QList<API::LayoutCell> cells = layout->cellList();
    for (const API::LayoutCell &cell : cells) {
        if (cell.camera)
            cameras.append(cell.camera);
    }
    return cameras;
}

API::CameraPtr MainWindow::firstCamera() const
{
    return layoutCameras().value(0);
}

void MainWindow::onCameraAdded(API::CameraPtr camera)
{
    timeline->addCamera(camera);
    archiveControlPanel->addCamera(camera);
    layoutWidget->setSoundVolume(controlPanel->volume());
    if (Player::VideoWidget *tile = layoutWidget->player(camera)) {
        if (archiveMode)
            tile->setArchiveMode(true);
        else
            tile->playLive();
        // A new tile knows nothing of a sound that is switched off.
        tile->enableSound(controlPanel->isSoundEnabled());
    }
    const API::LayoutPtr layout = layoutWidget->workingLayout();
    if (layout->rows() == 1 && layout->columns() == 1) {
        infoPanel->enterViewMode();
        infoPanel->setTitle(camera->name());
    }
    if (layoutCameras().size() == 1)
        activateCamera(camera);
}

void MainWindow::onServerAdded(API::ServerPtr)
{
    startLayoutEditor();
}

void MainWindow::startLayoutEditor()
{
    setRosterMode();
    infoPanel->enterEditMode();
}

void MainWindow::openCamera(API::CameraPtr camera)
{
    qDebug() << "Open camera";
    if (!camera)
        return;
    const auto layout = API::LayoutPtr::create();
    layout->setCamera(camera, 0, 0, 1, 1);
    layout->setName(camera->name());
    if (openLayout(layout))
        infoPanel->enterViewMode();
}

void MainWindow::addToLayout(API::CameraPtr camera)
{
    layoutWidget->addCamera(camera);
}

void MainWindow::closeCamera(API::CameraPtr camera)
{
    if (!camera)
        return;
    const API::CameraPtr next = firstCamera();
    if (timeline->activeCamera() == camera && next)
        activateCamera(next);
    timeline->removeCamera(camera->globalId());
    archiveControlPanel->clear(camera);
    endExportOf(camera);
    const API::LayoutPtr layout = layoutWidget->workingLayout();
    if (layout && layout->rows() == 1 && layout->columns() == 1) {
        infoPanel->enterEmptyMode();
        closeCurrentView();
    }
}

void MainWindow::activateCamera(API::CameraPtr camera)
{
    if (camera == timeline->activeCamera())
        return;
    if (!camera || !timeline->hasCamera(camera->globalId())) {
        layoutWidget->setActiveCamera(API::CameraPtr());
        timeline->setActiveCameraId({});
    } else {
        layoutWidget->setActiveCamera(camera);
        timeline->setActiveCameraId(camera->globalId());
        emit cameraActivated(camera);
    }
    layoutWidget->setSoundVolume(controlPanel->volume());
}

void MainWindow::prepareToLive()
{
    const QDateTime now = App::Environment::now();
    timeline->setSliderVisible(false);
    timeline->setCurrentValue(now);
    hideArchivePanels();
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

void MainWindow::setSoundVolume(int volume)
{
    layoutWidget->setSoundVolume(volume);
    controlPanel->setSoundVolume(volume);
}

void MainWindow::enableSound(bool enable)
{
    layoutWidget->enableSound(enable);
    controlPanel->enableSound(enable);
}

void MainWindow::setLowQuality()
{
    layoutWidget->updateQuality(0);
}

void MainWindow::setMidQuality()
{
    layoutWidget->updateQuality(1);
}

void MainWindow::setHighQuality()
{
    layoutWidget->updateQuality(2);
}

void MainWindow::setAutoQuality()
{
    layoutWidget->updateQuality();
}

void MainWindow::onFullscreen()
{
    if (!isFullScreen()) {
        rosterWasVisible = sideBar->isVisible();
        wasMaximized = isMaximized();
        hideRosterAndToolbar();
        infoPanel->hide();
        showFullScreen();
        controlPanel->enterFullscreen();
        return;
    }
    if (wasMaximized)
        showMaximized();
    else
        showNormal();
    infoPanel->show();
    controlPanel->leaveFullscreen();
    if (rosterWasVisible)
        showRosterAndToolbar();
}

void MainWindow::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape && isFullScreen()) {
        onFullscreen();
        event->accept();
    }
    QWidget::keyPressEvent(event);
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    App::settings().setValue(App::SettingsKey::geometry, saveGeometry());
    QWidget::closeEvent(event);
    emit closeRequested(this);
}

} // namespace GUI
} // namespace ZorvaneClient
