// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "API/Camera.h"
#include "API/Layout.h"
#include "App/Environment.h"
#include "GUI/LayoutWidget.h"
#include "GUI/Player/PlayerNotification.h"
#include "GUI/Player/VideoPlaceholder.h"
#include "GUI/Player/VideoWidget.h"
#include "tests/support/Roster.h"

using GUI::LayoutWidget;
using GUI::Player::VideoPlaceholder;
using GUI::Player::VideoWidget;

namespace {

template <typename T>
T *at(LayoutWidget &grid, int row, int column)
{
    auto *layout = qobject_cast<QGridLayout *>(grid.layout());
    QLayoutItem *item = layout->itemAtPosition(row, column);
    return item ? qobject_cast<T *>(item->widget()) : nullptr;
}

int placeholdersIn(LayoutWidget &grid)
{
    int count = 0;
    for (int index = 0; index < grid.layout()->count(); ++index)
        count += qobject_cast<VideoPlaceholder *>(grid.layout()->itemAt(index)->widget()) ? 1 : 0;
    return count;
}

} // namespace

class LayoutWidgetTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        qRegisterMetaType<API::CameraPtr>("API::CameraPtr");
        addServerToRoster("s"_s, {"a", "b", "c", "d", "e"});
    }

    void opensTilesAndPlaceholders()
    {
        LayoutWidget grid;
        QSignalSpy added(&grid, &LayoutWidget::cameraAdded);
        QSignalSpy modified(&grid, &LayoutWidget::layoutModified);
        grid.show();
        grid.openLayout(layoutOf(2, 3, {{2, 0}, {0, 1}}));
        QCOMPARE(grid.playerCount(), 2);
        QCOMPARE(added.count(), 2);
        QCOMPARE(modified.count(), 3);
        QCOMPARE(placeholdersIn(grid), 4);
        QCOMPARE(at<VideoWidget>(grid, 0, 2)->camera(), camera(1));
        QCOMPARE(at<VideoWidget>(grid, 1, 0)->camera(), camera(2));
        QCOMPARE(at<VideoWidget>(grid, 1, 0)->position(), (API::LayoutPoint{0, 1}));
        QVERIFY(at<VideoPlaceholder>(grid, 0, 0));
        QCOMPARE(grid.player(camera(2)), at<VideoWidget>(grid, 1, 0));
        QVERIFY(!grid.player(camera(5)));
    }

    void openingAnEqualLayoutKeepsTheTiles()
    {
        LayoutWidget grid;
        const API::LayoutPtr layout = layoutOf(1, 2, {{0, 0}});
        grid.openLayout(layout);
        const QPointer<VideoWidget> tile = grid.player(camera(1));
        grid.openLayout(API::LayoutPtr::create(*layout));
        QCOMPARE(grid.player(camera(1)), tile.data());
        QCOMPARE(grid.savedLayout(), layout);
    }

    void theFirstEditMakesACopy()
    {
        LayoutWidget grid;
        const API::LayoutPtr layout = layoutOf(1, 2, {});
        grid.openLayout(layout);
        QCOMPARE(grid.workingLayout(), layout);
        QCOMPARE(grid.savedLayout(), layout);
        grid.addCamera(camera(1));
        QVERIFY(grid.workingLayout() != layout);
        QCOMPARE(grid.savedLayout(), layout);
        QVERIFY(layout->cellList().isEmpty());
        const API::LayoutPtr edited = grid.workingLayout();
        grid.addCamera(camera(2));
        QCOMPARE(grid.workingLayout(), edited);
    }

    void cameraGoesToTheFirstFreeCell()
    {
        LayoutWidget grid;
        grid.openLayout(layoutOf(2, 2, {{0, 0}}));
        grid.addCamera(camera(2));
        QCOMPARE(grid.player(camera(2))->position(), (API::LayoutPoint{1, 0}));
        grid.addCamera(camera(3));
        QCOMPARE(grid.player(camera(3))->position(), (API::LayoutPoint{0, 1}));
        QCOMPARE(grid.workingLayout()->cellAt(1, 0).camera, camera(3));
    }

    void withoutAFreeCellNothingHappens()
    {
        LayoutWidget grid;
        grid.openLayout(layoutOf(1, 1, {{0, 0}}));
        QSignalSpy modified(&grid, &LayoutWidget::layoutModified);
        grid.addCamera(camera(2));
        QCOMPARE(grid.playerCount(), 1);
        QCOMPARE(modified.count(), 0);
    }

    void closingATileLeavesAPlaceholder()
    {
        LayoutWidget grid;
        const API::LayoutPtr layout = layoutOf(1, 2, {{0, 0}, {1, 0}});
        grid.openLayout(layout);
        QSignalSpy closed(&grid, &LayoutWidget::cameraClosed);
        grid.removeCamera(camera(1));
        QCOMPARE(closed.count(), 1);
        QVERIFY(at<VideoPlaceholder>(grid, 0, 0));
        QVERIFY(!grid.workingLayout()->cellAt(0, 0).camera);
        QCOMPARE(layout->cellList().size(), 2);
        grid.removeCamera(camera(1));
        QCOMPARE(closed.count(), 1);
    }

    void closingATileInItsOwnSignalIsSafe()
    {
        LayoutWidget grid;
        grid.openLayout(layoutOf(1, 1, {{0, 0}}));
        // What a window does when its only tile goes: the whole grid is built anew.
        connect(&grid, &LayoutWidget::cameraClosed, &grid,
                [&grid] { grid.openLayout(API::LayoutPtr::create()); });
        const QPointer<VideoWidget> tile = grid.player(camera(1));
        emit tile->closed(tile);
        QVERIFY2(tile, "the tile went in the middle of its own signal");
        QTRY_VERIFY(!tile);
        QCOMPARE(placeholdersIn(grid), 1);
    }

    void oneCameraInTwoCells()
    {
        LayoutWidget grid;
        const API::LayoutPtr layout = layoutOf(1, 2, {{0, 0}});
        layout->setCamera(camera(1), 0, 1, 1, 1);
        grid.openLayout(layout);
        QCOMPARE(grid.playerCount(), 2);
        QSignalSpy closed(&grid, &LayoutWidget::cameraClosed);
        grid.removeCamera(camera(1));
        QCOMPARE(closed.count(), 2);
        QCOMPARE(grid.playerCount(), 0);
    }

    void resizeKeepsTheSavedLayout()
    {
        LayoutWidget grid;
        const API::LayoutPtr layout = layoutOf(1, 2, {{0, 0}, {1, 0}});
        grid.openLayout(layout);
        grid.resizeLayout(3, 1);
        QCOMPARE(grid.savedLayout(), layout);
        QCOMPARE(grid.workingLayout()->rows(), 3);
        QCOMPARE(grid.workingLayout()->id(), layout->id());
        QCOMPARE(grid.playerCount(), 1);
        QCOMPARE(placeholdersIn(grid), 2);
        QCOMPARE(layout->columns(), 2);
    }

    void savingKeepsTheObject()
    {
        LayoutWidget grid;
        const API::LayoutPtr layout = layoutOf(1, 2, {});
        grid.openLayout(layout);
        grid.addCamera(camera(1));
        grid.saveLayout("Gate"_s);
        QCOMPARE(grid.savedLayout(), layout);
        QCOMPARE(grid.workingLayout(), layout);
        QCOMPARE(layout->name(), "Gate"_s);
        QCOMPARE(layout->cellAt(0, 0).camera, camera(1));
    }

    void spansComeBackTransposed()
    {
        LayoutWidget grid;
        const auto layout = API::LayoutPtr::create();
        layout->resize(3, 3);
        layout->setCamera(camera(1), 0, 0, 2, 1);
        grid.openLayout(layout);
        QCOMPARE(grid.player(camera(1))->span(), (API::CellSize{2, 1}));
    }

    void cellsStayEqualUnderTheMouse()
    {
        LayoutWidget grid;
        grid.resize(902, 602);
        grid.openLayout(layoutOf(2, 3, {{0, 0}, {2, 1}}));
        grid.show();
        // The bars that come up with the mouse must not make their tile ask for more room.
        QEnterEvent enter(QPointF(5, 5), QPointF(5, 5), QPointF(5, 5));
        QCoreApplication::sendEvent(grid.player(camera(1)), &enter);
        QCoreApplication::processEvents();
        const QSize cell = at<VideoWidget>(grid, 0, 0)->size();
        for (int row = 0; row < 2; ++row) {
            for (int column = 0; column < 3; ++column) {
                const QSize size = at<QWidget>(grid, row, column)->size();
                QVERIFY(qAbs(size.width() - cell.width()) <= 1);
                QVERIFY(qAbs(size.height() - cell.height()) <= 1);
            }
        }
    }

    void hintsStackFromTheTop()
    {
        LayoutWidget grid;
        grid.resize(600, 400);
        grid.openLayout(layoutOf(1, 1, {{0, 0}}));
        grid.show();
        emit grid.player(camera(1))->snapshotSaved("/tmp"_s);
        emit grid.player(camera(1))->snapshotSaved("/tmp"_s);
        const auto hints = grid.findChildren<GUI::PlayerNotification *>();
        QCOMPARE(hints.size(), 2);
        QTRY_COMPARE(hints.last()->pos(), QPoint(10, 10));
        QTRY_COMPARE(hints.first()->pos(), QPoint(10, 10 + hints.last()->height() + 5));
        emit hints.last()->closed();
        QTRY_COMPARE(hints.first()->pos(), QPoint(10, 10));
    }

    void placeholderOverASpanIsACellOfItsOwn()
    {
        LayoutWidget grid;
        const auto layout = API::LayoutPtr::create();
        layout->resize(2, 2);
        layout->setCamera(camera(1), 0, 0, 2, 2);
        grid.openLayout(layout);
        grid.show();
        const QPointer<VideoWidget> spanned = grid.player(camera(1));
        QCOMPARE(placeholdersIn(grid), 3);

        VideoPlaceholder *corner = nullptr;
        for (int index = 0; index < grid.layout()->count(); ++index) {
            if (auto *found =
                    qobject_cast<VideoPlaceholder *>(grid.layout()->itemAt(index)->widget()))
                corner = found;
        }
        emit corner->openCamera(camera(2));
        QCOMPARE(grid.player(camera(2))->position(), (API::LayoutPoint{1, 1}));
        grid.addCamera(camera(3));
        QCOMPARE(grid.player(camera(3))->position(), (API::LayoutPoint{1, 0}));
        grid.addCamera(camera(4));
        QCOMPARE(grid.player(camera(4))->position(), (API::LayoutPoint{0, 1}));
        QCOMPARE(placeholdersIn(grid), 0);

        emit spanned->swapRequested(1, 1);
        QCOMPARE(grid.player(camera(2))->position(), (API::LayoutPoint{0, 0}));
        QCOMPARE(spanned->position(), (API::LayoutPoint{1, 1}));
        QCOMPARE(grid.workingLayout()->cellAt(0, 0).camera, camera(2));
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QVERIFY2(spanned, "a tile in use was released");
        QCOMPARE(grid.playerCount(), 4);
    }

    void brokenLayouts_data()
    {
        using Cells = QList<QRect>;
        // left is the row, top the column
        rows<QSize, Cells, int>(
            {"columnsByRows", "cells", "tiles"},
            {
                {"no rows, no columns", QSize(0, 0), Cells{{0, 0, 1, 1}}, 0},
                {"no columns", QSize(0, 3), Cells{{0, 0, 1, 1}}, 0},
                {"negative size", QSize(-2, -3), Cells{}, 0},
                {"empty spans", QSize(2, 2), Cells{{0, 0, 0, 0}, {1, 1, 0, 0}}, 2},
                {"negative spans", QSize(2, 2), Cells{{0, 0, -5, -1}, {1, 0, 1, -64}}, 2},
                {"overlapping spans", QSize(3, 3),
                 Cells{{0, 0, 3, 3}, {0, 1, 2, 2}, {1, 1, 2, 2}, {2, 2, 1, 1}}, 4},
                {"spans beyond the edge", QSize(2, 2), Cells{{0, 0, 64, 64}, {1, 1, 64, 64}}, 2},
                {"cells outside the grid", QSize(2, 2),
                 Cells{{-1, 0, 1, 1}, {0, -7, 1, 1}, {2, 2, 1, 1}, {1, 1, 1, 1}}, 1},
                {"far more cells than anybody needs", QSize(24, 24),
                 Cells{{0, 0, 64, 64}, {23, 23, 64, 64}}, 2},
            });
    }

    void brokenLayouts()
    {
        const auto [columnsByRows, cells, tiles] = row<QSize, QList<QRect>, int>();
        const auto layout = API::LayoutPtr::create();
        layout->resize(64, 64);
        int number = 0;
        for (const QRect &cell : cells)
            layout->setCamera(camera(++number), cell.left(), cell.top(), cell.width(),
                              cell.height());
        LayoutWidget grid;
        grid.show();
        // Smaller only now: the cells that fall outside stay.
        QVariantMap map = layout->toVariantMap();
        map.insert("rows"_s, columnsByRows.height());
        map.insert("columns"_s, columnsByRows.width());
        layout->update(map);
        grid.openLayout(layout);
        QCOMPARE(grid.playerCount(), tiles);
        const QList<VideoWidget *> shown = grid.players();
        for (const VideoWidget *tile : shown)
            QVERIFY(tile->span().rows >= 1 && tile->span().columns >= 1);
        QCoreApplication::processEvents();
        grid.grab();

        // Whatever the user does with it then.
        grid.updateQuality();
        grid.addCamera(camera(5));
        const QList<VideoWidget *> opened = grid.players();
        for (VideoWidget *tile : opened) {
            emit tile->swapRequested(0, 0);
            emit tile->swapRequested(1, 1);
        }
        if (VideoPlaceholder *placeholder = grid.findChild<VideoPlaceholder *>())
            emit placeholder->openCamera(camera(5));
        QCoreApplication::processEvents();
        grid.resizeLayout(2, 2);
        QCOMPARE(grid.workingLayout()->rows(), 2);
        QVERIFY(grid.playerCount() <= 4);
        const QList<VideoWidget *> left = grid.players();
        for (VideoWidget *tile : left)
            emit tile->closed(tile);
        QCOMPARE(grid.playerCount(), 0);
        QCOMPARE(grid.findChildren<VideoWidget *>().size(), 0);
        QCoreApplication::processEvents();
    }

    void missingLayoutsAndCamerasAreNone()
    {
        LayoutWidget grid;
        grid.openLayout(layoutOf(1, 2, {{0, 0}}));
        grid.addCamera(API::CameraPtr());
        grid.addCamera(API::CameraPtr(), API::LayoutPoint{1, 0}, API::CellSize{});
        QCOMPARE(grid.playerCount(), 1);
        grid.openLayout(API::LayoutPtr());
        QCOMPARE(grid.playerCount(), 0);
        QCOMPARE(placeholdersIn(grid), 0);
        grid.addCamera(camera(1));
        QCOMPARE(grid.playerCount(), 0);
    }

    void closingATileEndsItsPlayer()
    {
        QFile player("player"_s);
        QVERIFY(player.open(QIODevice::WriteOnly));
        player.write("#!/bin/sh\nexec cat > /dev/null\n");
        player.setPermissions(player.permissions() | QFileDevice::ExeOwner);
        player.close();
        App::Environment::setPlayerProgram(QFileInfo(player).absoluteFilePath());
        addServerToRoster("online"_s, {"x"}, true);

        LayoutWidget grid;
        grid.openLayout(layoutOf(1, 1, {}));
        grid.addCamera(rosterCamera("online"_s, 1));
        VideoWidget *tile = grid.players().first();
        QVERIFY(tile->playLive());
        const QPointer<QProcess> process = tile->findChild<QProcess *>();
        QCOMPARE(process->state(), QProcess::Running);
        // Before the event loop turns: a layout that follows has its own players to start.
        grid.clear();
        QVERIFY(process);
        QCOMPARE(process->state(), QProcess::NotRunning);
        QTRY_VERIFY(!process);
    }

    void backgroundShowsBetweenTheCells()
    {
        LayoutWidget grid;
        grid.resize(404, 304);
        grid.openLayout(layoutOf(1, 2, {}));
        grid.show();
        QVERIFY(QTest::qWaitForWindowExposed(&grid));
        const QImage picture = grid.grab().toImage();
        QCOMPARE(picture.pixelColor(0, 0), QColor(41, 44, 49));
        const int gap = at<VideoPlaceholder>(grid, 0, 0)->geometry().right() + 1;
        QCOMPARE(picture.pixelColor(gap, 150), QColor(41, 44, 49));
    }

private:
    /// A layout with cameras 1, 2, ... in `cells`.
    API::LayoutPtr layoutOf(int rows, int columns, const QList<API::LayoutPoint> &cells)
    {
        const auto layout = API::LayoutPtr::create();
        layout->resize(rows, columns);
        int number = 0;
        for (const API::LayoutPoint &cell : cells)
            layout->setCamera(camera(++number), cell.row, cell.column, 1, 1);
        return layout;
    }

    API::CameraPtr camera(int number) { return rosterCamera("s"_s, number); }
};

QTEST_MAIN(LayoutWidgetTest)
#include "LayoutWidgetTest.moc"
