// SPDX-License-Identifier: MIT
// Layouts in turn.
#include "GUI/MainWindow.h"

#include <QApplication>

#include <algorithm>

#include "App/Environment.h"
#include "App/Settings.h"
#include "App/SettingsKeys.h"
#include "GUI/ActivityWatch.h"
#include "GUI/LayoutListWidget.h"
#include "GUI/LayoutWidget.h"
#include "GUI/Player/VideoWidget.h"
#include "GUI/SideBar.h"
#include "GUI/Timeline.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

constexpr std::chrono::seconds lookInterval{1};

} // namespace

void MainWindow::setUpTour()
{
    connect(sideBar->layoutListWidget(), &LayoutListWidget::tourChosen, this, &MainWindow::setTour);
    tourTimer.setInterval(lookInterval);
    connect(&tourTimer, &QTimer::timeout, this, &MainWindow::goOnTour);
}

void MainWindow::toggleTour()
{
    const int usual = static_cast<int>(Tour::usualInterval.count());
    const int stored = App::settings().value(App::SettingsKey::tourInterval, usual).toInt();
    const int seconds = stored < Tour::shortestInterval.count() ? usual : stored;
    setTour(tour.isOn() ? 0 : seconds);
}

void MainWindow::setTour(int seconds)
{
    delete tourActivity;
    if (seconds == 0) {
        tour.stop();
        tourTimer.stop();
        layoutWidget->showHint(tr("The tour is over."));
    } else {
        tour.start(App::Environment::now(), std::chrono::seconds(seconds));
        tourTimer.start();
        tourActivity = new ActivityWatch(this);
        connect(tourActivity, &ActivityWatch::touched, this,
                [this] { tour.hold(App::Environment::now()); });
        App::settings().setValue(App::SettingsKey::tourInterval, seconds);
        layoutWidget->showHint(tr("Saved layouts in turn, every %1 s.").arg(seconds));
    }
    sideBar->layoutListWidget()->showTour(tour.isOn(), seconds);
}

bool MainWindow::mustStay() const
{
    const QList<Player::VideoWidget *> tiles = layoutWidget->players();
    const bool isExporting =
        std::any_of(tiles.begin(), tiles.end(),
                    [](const Player::VideoWidget *tile) { return tile->isExporting(); });
    const bool isLookedAt = layoutWidget->isPaused() || layoutWidget->isMaximised() ||
                            timeline->isVisibleTo(this) ||
                            QApplication::mouseButtons() != Qt::NoButton;
    return hasEdits() || archiveMode || isLookedAt || isExporting ||
           QApplication::activeModalWidget() || QApplication::activePopupWidget();
}

void MainWindow::goOnTour()
{
    const QDateTime now = App::Environment::now();
    if (mustStay())
        tour.hold(now);
    else if (const API::LayoutPtr next = tour.next(now, sideBar->layoutListWidget()->layouts(),
                                                   layoutWidget->savedLayout()))
        openLayout(next);
}

} // namespace GUI
} // namespace ZorvaneClient
