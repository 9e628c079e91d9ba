// SPDX-License-Identifier: MIT
// Opening, editing and closing layouts.
#include "GUI/MainWindow.h"

#include <QDebug>

#include "API/CloudAPIClient.h"
#include "API/Layout.h"
#include "GUI/ArchiveControlPanel.h"
#include "GUI/ControlPanel.h"
#include "GUI/InfoPanel.h"
#include "GUI/LayoutListWidget.h"
#include "GUI/LayoutWidget.h"
#include "GUI/Question.h"
#include "GUI/RosterWidget.h"
#include "GUI/SideBar.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

constexpr int newLayoutSide = 2;

} // namespace

bool MainWindow::settleEdits()
{
    if (infoPanel->mode() != InfoPanel::EditMode && infoPanel->mode() != InfoPanel::UnsavedMode)
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
    const API::LayoutPtr shown = layoutWidget->workingLayout();
    layoutWidget->openLayout(layout);
    // A grid that has all that already tells of no camera.
    if (layoutWidget->workingLayout() == shown)
        addCamerasToCalendar();
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

void MainWindow::openNewLayout()
{
    const auto layout = API::LayoutPtr::create();
    layout->resize(newLayoutSide, newLayoutSide);
    openLayout(layout);
    setRosterMode();
    infoPanel->enterEditMode();
    newLayoutUntouched = true;
}

void MainWindow::resizeLayout(int row, int column)
{
    layoutWidget->resizeLayout(row, column);
}

void MainWindow::layoutModified()
{
    newLayoutUntouched = false;
    infoPanel->enterEditMode();
    controlPanel->setEmptyMode(!firstCamera());
    const API::LayoutPtr layout = layoutWidget->workingLayout();
    sideBar->rosterWidget()->setAddToLayoutEnabled(layout && layout->freeCellCount() != 0);
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
        infoPanel->enterEmptyMode();
        closeCurrentView();
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
