// SPDX-License-Identifier: MIT
#include "GUI/MainWindow.h"

#include <QCoreApplication>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QVBoxLayout>

#include "API/Layout.h"
#include "API/StreamQuality.h"
#include "App/Environment.h"
#include "App/Settings.h"
#include "App/SettingsKeys.h"
#include "GUI/ArchiveControlPanel.h"
#include "GUI/ControlPanel.h"
#include "GUI/InfoPanel.h"
#include "GUI/KeyDispatcher.h"
#include "GUI/Kiosk.h"
#include "GUI/LayoutListWidget.h"
#include "GUI/LayoutWidget.h"
#include "GUI/SideBar.h"
#include "GUI/TabOrder.h"
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
    , exportFlow({timeline, archiveControlPanel, controlPanel, layoutWidget})
{
    hideArchivePanels();
    connectSide();
    connectInfoPanel();
    connectControlPanel();
    connectStrip();
    connectGrid();
    setUpTour();
    arrange();
    resize(firstSize);
    connect(new KeyDispatcher(this), &KeyDispatcher::triggered, this, &MainWindow::onKey);
    // Keys are for the window, until a field is clicked and again when something else is.
    setFocusPolicy(Qt::ClickFocus);
    setFocus();

    layoutWidget->setNamesShown(App::settings().value(App::SettingsKey::namesOnTiles).toBool());
    const QString openTab = App::settings().value(App::SettingsKey::openTab).toString();
    closeCurrentView();
    if (openTab == layoutsTab)
        setLayoutsMode();
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

void MainWindow::showTitle(const QString &name)
{
    const QString program = QCoreApplication::applicationName();
    // Single ones are taken for the place of a mark.
    QString title = name.simplified().replace(QLatin1String("[*]"), QLatin1String("[*][*]"));
    setWindowTitle(title.isEmpty() ? program : QStringLiteral("%1 — %2").arg(title, program));
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

void MainWindow::enterKiosk(const QString &layoutName)
{
    new Kiosk({this, sideBar->layoutListWidget(), layoutWidget, controlPanel, timeline},
              layoutName);
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

void MainWindow::toggleNames()
{
    const bool areShown = !layoutWidget->areNamesShown();
    layoutWidget->setNamesShown(areShown);
    App::settings().setValue(App::SettingsKey::namesOnTiles, areShown);
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
    layoutWidget->updateQuality(API::LowQuality);
}

void MainWindow::setMidQuality()
{
    layoutWidget->updateQuality(API::MiddleQuality);
}

void MainWindow::setHighQuality()
{
    layoutWidget->updateQuality(API::HighQuality);
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
    if (event->key() == Qt::Key_Escape && goBack())
        event->accept();
    else if (event->key() == Qt::Key_Escape)
        setFocus(); // out of a field
    QWidget::keyPressEvent(event);
}

bool MainWindow::focusNextPrevChild(bool next)
{
    return moveFocus(tabStops({toolBar, sideBar, infoPanel, layoutWidget, archiveControlPanel,
                               timeline, controlPanel}),
                     next);
}

void MainWindow::closeEvent(QCloseEvent *event)
{
    App::settings().setValue(App::SettingsKey::geometry, saveGeometry());
    QWidget::closeEvent(event);
    emit closeRequested(this);
}

} // namespace GUI
} // namespace ZorvaneClient
