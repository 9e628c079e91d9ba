// SPDX-License-Identifier: MIT
#include <QMessageBox>
#include <QPushButton>
#include <QtTest>

#include "API/Camera.h"
#include "API/Layout.h"
#include "GUI/GridSizeEditor.h"
#include "GUI/InfoPanel.h"
#include "GUI/LayoutWidget.h"
#include "GUI/MainWindow.h"
#include "GUI/Player/VideoPlaceholder.h"
#include "GUI/Player/VideoWidget.h"
#include "GUI/RosterWidget.h"
#include "tests/e2e/EndToEnd.h"
#include "tests/e2e/Wall.h"
#include "tests/support/DialogVisitor.h"
#include "tools/pictures/Require.h"
#include "tools/pictures/Scenes.h"
#include "tools/pictures/Studio.h"

namespace ZorvaneClient::Pictures {

using namespace Tests;

namespace {

/// A grid of cameras that have nothing to show, each for a reason of its own.
void takeMessages(Studio &studio)
{
    auto layout = API::LayoutPtr::create();
    layout->resize(2, 2);
    layout->setName(QStringLiteral("2 x 2"));
    const DemoCamera troubled[] = {
        studio.cameraThat([](const DemoCamera &each) { return !each.online; }, "offline camera"),
        studio.cameraThat([](const DemoCamera &each) { return !each.paid; }, "unpaid camera"),
        studio.cameraThat(
            [](const DemoCamera &each) { return each.online && each.paid && !each.live; },
            "camera without the right"),
        studio.good.first()};
    int cell = 0;
    for (const DemoCamera &camera : troubled) {
        layout->setCamera(studio.camera(camera), cell / 2, cell % 2, 1, 1);
        ++cell;
    }
    studio.spoil("stall", "/flv/live");
    require(mainWindow()->openLayout(layout), "layout");
    hoverNothing();
    studio.take("tile-messages", "Tiles without a picture, and one that is being opened",
                gridPlace());
    studio.service.clearFaults();
}

/// One tile of the open grid alone, the whole of it and a part.
void takeCloseLook(Studio &studio)
{
    GUI::LayoutWidget *grid = gridOf(mainWindow());
    grid->toggleMaximised(tile());
    waitFor([] { return stripOf(tile()).has_value(); }, "picture of the tile alone");
    studio.take("tile-alone", "One tile of a grid alone");
    const QPointF place(tile()->width() / 3.0, tile()->height() / 2.0);
    QWheelEvent wheel(place, tile()->mapToGlobal(place.toPoint()), QPoint(), QPoint(0, 720),
                      Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(tile(), &wheel);
    studio.take("tile-zoomed", "A part of its picture, and the map that shows which", gridPlace());
    grid->showAllTiles();
}

void takeEditing(Studio &studio)
{
    pressTab("layoutsButton");
    press(mainWindow(), "addLayoutButton");
    waitFor(
        [] {
            return qobject_cast<GUI::Player::VideoPlaceholder *>(
                widgetInCell(gridOf(mainWindow()), {1, 1}, 2, 2));
        },
        "empty cells");
    for (int column = 0; column < 2; ++column) {
        const DemoCamera &camera = studio.good.at(column);
        require(dropOn(widgetInCell(gridOf(mainWindow()), {column, column}, 2, 2),
                       GUI::cameraDrag({camera.server, camera.camera}), Qt::CopyAction),
                "drop");
    }
    waitFor([] { return gridOf(mainWindow())->isPlaying(); }, "picture");
    waitFor([] { return stripOf(tile()).has_value(); }, "picture");
    hoverNothing();
    studio.take("layout-editing", "A new layout with two cameras and two places for more");

    press(mainWindow(), "gridSizeButton");
    auto *popup = mainWindow()->findChild<GUI::GridSizeEditor *>();
    require(popup, "grid popup");
    QTest::mouseMove(popup, QPoint(50, 40));
    studio.take("grid-popup", "The size of the grid is chosen",
                gridPlace().adjusted(0, 0, 0, -gridPlace().height() / 2));
    popup->close();

    const DialogVisitor visitor([&](QDialog *dialog) {
        settle();
        studio.album.take(QStringLiteral("question-save"),
                          QStringLiteral("The layout has been modified"), dialog);
        qobject_cast<QMessageBox *>(dialog)->button(QMessageBox::Discard)->click();
    });
    mainWindow()->openCamera(studio.camera(studio.good.at(2)));
    require(visitor.visits() == 1, "question");
}

} // namespace

void takeWalls(Studio &studio)
{
    studio.open(studio.layout(studio.good.first().name, 1, 1));
    studio.take("live", "A live camera");
    hover(tile());
    studio.take("tile-hover", "The bars of a tile under the pointer", gridPlace());
    studio.takeMenu(
        "tile-menu", "The menu of a tile",
        tile()->findChild<QPushButton *>(QStringLiteral("settingsButton")),
        gridPlace().adjusted(gridPlace().width() / 2, 2 * gridPlace().height() / 3, 0, 0));
    hoverNothing();
    studio.open(studio.layout(QStringLiteral("2 x 2"), 2, 2));
    studio.take("wall-2x2", "Four cameras, one of them chosen");
    focusByTab(gridOf(mainWindow())->players().last());
    studio.take("wall-keyboard", "Tab has come to a tile", gridPlace());
    mainWindow()->findChild<GUI::RosterWidget *>()->ensureVisible(0, 0); // Tab passed all cards
    studio.open(studio.layout(QStringLiteral("3 x 3"), 3, 3));
    studio.takeAtAnyScale("wall-3x3", "Nine cameras");
    studio.open(studio.layout(QStringLiteral("4 x 4"), 4, 4));
    studio.take("wall-4x4", "Sixteen cameras");
    takeCloseLook(studio);
    gridOf(mainWindow())->setNamesShown(true);
    waitForPictures("grid");
    studio.take("wall-names", "The tiles tell their cameras' names and what they show",
                gridPlace());
    gridOf(mainWindow())->setNamesShown(false);
    press(mainWindow(), "hideRosterButton");
    studio.take("wall-wide", "The panels at the side are hidden");
    press(mainWindow(), "showPBtn");
    takeMessages(studio);
    takeEditing(studio);
}

void takeControls(Studio &studio)
{
    auto *panel = mainWindow()->findChild<QWidget *>(QStringLiteral("ControlPanel"));
    const QRect place = placeOf(panel);
    hoverNothing();
    studio.take("controls-live", "The controls while live", place);
    focusByTab(partNamed("pauseButton"));
    studio.take("controls-keyboard", "Tab has come to a button", place);
    QTest::mouseClick(panel, Qt::LeftButton, Qt::NoModifier, QPoint(1, 1)); // away with the frame
    hover(partNamed("soundButton"));
    studio.take("controls-sound", "The volume", place);
    press(mainWindow(), "soundButton");
    studio.take("controls-mute", "The sound is off", place);
    press(mainWindow(), "soundButton");
    hoverNothing();
    press(mainWindow(), "pauseButton");
    studio.take("controls-paused", "Paused", place);
    press(mainWindow(), "playButton");
    studio.takeMenu("controls-quality", "The quality of the picture",
                    qobject_cast<QPushButton *>(partNamed("qualityButton")), place);
}

} // namespace ZorvaneClient::Pictures
