// SPDX-License-Identifier: MIT
// Cameras and layouts: opening, editing and closing them.
#include "GUI/MainWindow.h"

#include <QDebug>
#include <QScopedValueRollback>

#include <set>

#include "API/Camera.h"
#include "API/Layout.h"
#include "API/Server.h"
#include "GUI/ArchiveControlPanel.h"
#include "GUI/ControlPanel.h"
#include "GUI/InfoPanel.h"
#include "GUI/LayoutListWidget.h"
#include "GUI/LayoutWidget.h"
#include "GUI/Player/VideoWidget.h"
#include "GUI/Question.h"
#include "GUI/RosterWidget.h"
#include "GUI/SideBar.h"
#include "GUI/Timeline.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

constexpr int newLayoutSide = 2;

} // namespace

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
        // Given only afterwards, it would start each stream twice.
        if (isOpening)
            tile->takeQuality(layoutWidget->qualityOf(*tile));
        if (archiveMode)
            tile->setArchiveMode(true);
        else
            tile->playLive();
        // A new tile knows nothing of a sound that is switched off.
        tile->enableSound(controlPanel->isSoundEnabled());
    }
    if (cellCount() == 1) {
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
    exportFlow.tilesClosed();
    if (cellCount() == 1)
        forceCloseView();
}

void MainWindow::activateCamera(API::CameraPtr camera)
{
    // Two windows may hold two objects of one camera, when its server went and came back between
    // them: told apart, they would go on telling each other of it without end.
    const API::CameraPtr active = timeline->activeCamera();
    if (camera == active || (camera && active && camera->globalId() == active->globalId()))
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

bool MainWindow::hasEdits() const
{
    return infoPanel->mode() == InfoPanel::EditMode || infoPanel->mode() == InfoPanel::UnsavedMode;
}

bool MainWindow::settleEdits()
{
    if (!hasEdits())
        return true;
    Question question;
    question.text = tr("The layout has been modified.");
    question.details = tr("Do you want to save your changes?");
    question.buttons = QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel;
    question.defaultButton = QMessageBox::Save;
    question.modality = Qt::WindowModal;
    const QMessageBox::StandardButton answer = ask(question, this);
    if (answer == QMessageBox::Save)
        saveLayout();
    // A question that goes without an answer, as at the end of the program, is no "Discard".
    return answer == QMessageBox::Save || answer == QMessageBox::Discard;
}

bool MainWindow::openLayout(API::LayoutPtr layout)
{
    qDebug() << "Open layout";
    if (!layout || !settleEdits())
        return false;
    archiveControlPanel->clear();
    controlPanel->resetQuality();
    prepareToLive();
    {
        const QScopedValueRollback<bool> opening(isOpening, true);
        // A grid that has all that already tells of no camera.
        if (!layoutWidget->openLayout(layout))
            addCamerasToCalendar();
    }
    layoutWidget->updateQuality();
    infoPanel->setCurrentLayout(layout);
    if (const API::CameraPtr camera = firstCamera())
        activateCamera(camera);
    layoutWidget->setSoundVolume(controlPanel->volume());
    layoutWidget->enableSound(controlPanel->isSoundEnabled());
    update();
    return true;
}

void MainWindow::addCamerasToCalendar()
{
    const QList<API::CameraPtr> cameras = layoutCameras();
    for (const API::CameraPtr &camera : cameras)
        archiveControlPanel->addCamera(camera);
}

void MainWindow::startLayoutEditor()
{
    setRosterMode();
    layoutWidget->showAllTiles();
    infoPanel->enterEditMode();
}

void MainWindow::openNewLayout()
{
    const auto layout = API::LayoutPtr::create();
    layout->resize(newLayoutSide, newLayoutSide);
    const bool isOpened = openLayout(layout);
    startLayoutEditor();
    newLayoutUntouched = true;
    if (isOpened)
        infoPanel->editName();
}

void MainWindow::resizeLayout(int row, int column)
{
    layoutWidget->resizeLayout(row, column);
}

void MainWindow::layoutModified()
{
    newLayoutUntouched = false;
    infoPanel->enterEditMode();
    exportFlow.showControls();
    const API::LayoutPtr layout = layoutWidget->workingLayout();
    sideBar->rosterWidget()->setAddToLayoutEnabled(layout && layout->freeCellCount() != 0);
    markWhatIsOpen();
}

void MainWindow::markWhatIsOpen()
{
    std::set<API::camera_global_id_t> cameras;
    const QList<API::CameraPtr> shown = layoutCameras();
    for (const API::CameraPtr &camera : shown)
        cameras.insert(camera->globalId());
    sideBar->rosterWidget()->markOpen(cameras);
    const API::LayoutPtr layout = layoutWidget->workingLayout();
    sideBar->layoutListWidget()->markOpen(layout ? layout->id() : QString());
}

void MainWindow::saveLayout()
{
    layoutWidget->saveLayout(infoPanel->layoutName());
    LayoutListWidget *list = sideBar->layoutListWidget();
    if (!layoutListHolds(layoutWidget->savedLayout()))
        list->addLayout(layoutWidget->savedLayout());
    list->saveLayouts();
    list->updateLayouts();
    infoPanel->enterViewMode();
}

bool MainWindow::layoutListHolds(const API::LayoutPtr &layout) const
{
    return layout && sideBar->layoutListWidget()->hasLayout(layout);
}

void MainWindow::cancelLayout()
{
    const API::LayoutPtr saved = layoutWidget->savedLayout();
    const API::LayoutPtr working = layoutWidget->workingLayout();
    if (newLayoutUntouched) {
        forceCloseView();
    } else if (saved && working && *saved == *working) {
        infoPanel->enterViewMode();
    } else if (layoutListHolds(saved)) {
        openLayout(saved);
    } else {
        closeCurrentView();
    }
}

void MainWindow::closeCurrentView()
{
    if (openLayout(API::LayoutPtr::create()))
        infoPanel->enterEmptyMode();
}

void MainWindow::forceCloseView()
{
    infoPanel->enterEmptyMode();
    closeCurrentView();
}

} // namespace GUI
} // namespace ZorvaneClient
