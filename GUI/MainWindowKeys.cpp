// SPDX-License-Identifier: MIT
// What the keys do in the window, as the buttons for it would.
#include "GUI/MainWindow.h"

#include "API/Camera.h"
#include "API/Layout.h"
#include "App/Environment.h"
#include "GUI/ArchiveControlPanel.h"
#include "GUI/ControlPanel.h"
#include "GUI/GridRules.h"
#include "GUI/KeyCard.h"
#include "GUI/LayoutListWidget.h"
#include "GUI/LayoutWidget.h"
#include "GUI/Player/VideoWidget.h"
#include "GUI/SettingsWidget.h"
#include "GUI/SideBar.h"
#include "GUI/Timeline.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

/// What the tile covers of the grid, seen or not.
QRect cellsOf(const Player::VideoWidget &tile)
{
    return QRect(tile.position().column, tile.position().row, tile.span().columns,
                 tile.span().rows);
}

} // namespace

void MainWindow::onKey(KeyAction action, int number)
{
    switch (action) {
    case KeyAction::Pause:
        controlPanel->pressPause();
        break;
    case KeyAction::Fullscreen:
        onFullscreen();
        break;
    case KeyAction::Maximise:
        layoutWidget->toggleMaximised(layoutWidget->player(timeline->activeCamera()));
        break;
    case KeyAction::Back:
        goBack();
        break;
    case KeyAction::Seek:
        if (archiveMode)
            seek(timeline->currentValue().addMSecs(number));
        break;
    case KeyAction::Live:
        // Where a fragment is marked or written there is no such button either.
        if (exportFlow.isIdle() && (archiveMode || timeline->isVisibleTo(this)))
            playLive();
        break;
    case KeyAction::Records:
        controlPanel->pressRecords();
        break;
    case KeyAction::Snapshot:
        if (Player::VideoWidget *tile = layoutWidget->player(timeline->activeCamera()))
            tile->saveSnapshot();
        break;
    case KeyAction::Sound:
        controlPanel->pressSound();
        break;
    case KeyAction::Speed:
        if (archiveMode)
            controlPanel->stepSpeed(number);
        break;
    case KeyAction::OpenLayout:
        openLayout(sideBar->layoutListWidget()->layouts().value(number));
        break;
    case KeyAction::StepLayout:
        stepLayout(number);
        break;
    case KeyAction::Tour:
        toggleTour();
        break;
    case KeyAction::MoveToTile:
        moveToTile(static_cast<Direction>(number));
        break;
    case KeyAction::ResetZoom:
        layoutWidget->resetZoom();
        break;
    case KeyAction::Names:
        toggleNames();
        break;
    case KeyAction::Search:
        startSearch();
        break;
    case KeyAction::Help:
        (new KeyCard(this))->showOver(*this);
        break;
    }
}

bool MainWindow::goBack()
{
    if (layoutWidget->isMaximised())
        layoutWidget->showAllTiles();
    else if (isFullScreen())
        onFullscreen();
    else
        return false;
    return true;
}

void MainWindow::seek(const QDateTime &time)
{
    const QDateTime target = qMin(time, App::Environment::now());
    archiveControlPanel->setDate(target.date());
    timeline->reveal(target);
    onPlayArchive(target);
}

void MainWindow::stepLayout(int step)
{
    const API::LayoutPtr shown = layoutWidget->savedLayout();
    const API::LayoutPtr next = layoutBeside(sideBar->layoutListWidget()->layouts(), shown, step);
    if (next != shown)
        openLayout(next);
}

void MainWindow::moveToTile(Direction direction)
{
    const API::CameraPtr active = timeline->activeCamera();
    const Player::VideoWidget *from = layoutWidget->player(active);
    QVector<QRect> areas;
    QList<API::CameraPtr> cameras;
    const QList<Player::VideoWidget *> tiles = layoutWidget->players();
    for (const Player::VideoWidget *tile : tiles) {
        // Another tile of the same camera is active as well.
        if (tile->camera() == active)
            continue;
        areas.append(cellsOf(*tile));
        cameras.append(tile->camera());
    }
    const int next = from ? neighbour(areas, cellsOf(*from), direction) : 0;
    if (next < 0 || next >= cameras.size())
        return;
    activateCamera(cameras.at(next));
    if (layoutWidget->isMaximised())
        layoutWidget->toggleMaximised(layoutWidget->player(cameras.at(next)));
}

void MainWindow::startSearch()
{
    if (sideBar->isHidden())
        showRosterAndToolbar();
    if (sideBar->settingsWidget()->isVisibleTo(sideBar))
        setRosterMode();
    sideBar->startSearch();
}

} // namespace GUI
} // namespace ZorvaneClient
