// SPDX-License-Identifier: MIT
#include "GUI/GridSizeEditor.h"
#include "GUI/PlayerNotification.h"
#include "tests/GUI/GridWorld.h"
#include "tests/support/LogCapture.h"

using namespace ZorvaneClient::GUI;
using Player::VideoPlaceholder;
using Player::VideoWidget;

namespace {

/// Steps such as "add c", "close a", "resize 3 1", "drop c 1 0" on that cell, "move 0 0 1 1" from
/// the first cell to the second, "alone a" as a double click on it asks for.
void edit(LayoutWidget &grid, const QString &steps)
{
    for (const QString &step : steps.split(", "_s, Qt::SkipEmptyParts)) {
        const QStringList words = step.split(' ');
        const API::CameraPtr camera = cameraNamed(words.value(1));
        const auto number = [&words](int place) { return words.at(place).toInt(); };
        if (words.size() == 1) // a slot
            QMetaObject::invokeMethod(&grid, words.first().toLatin1());
        else if (words.first() == "add"_s)
            grid.addCamera(camera);
        else if (words.first() == "close"_s)
            grid.removeCamera(camera);
        else if (words.first() == "resize"_s)
            grid.resizeLayout(number(1), number(2));
        else if (words.first() == "alone"_s)
            emit grid.player(camera)->maximiseRequested(grid.player(camera));
        else if (words.first() == "drag"_s)
            emit grid.player(camera)->dragStarting();
        else if (words.first() == "dragged"_s)
            emit grid.player(camera)->dragEnded();
        else if (words.first() == "open"_s)
            grid.openLayout(API::LayoutPtr::create(*grid.workingLayout()));
        else if (words.first() == "drop"_s) // a tile and a placeholder have the same signals
            QMetaObject::invokeMethod(widgetAt(grid, number(2), number(3)), "openCamera",
                                      Q_ARG(API::CameraPtr, camera));
        else
            QMetaObject::invokeMethod(widgetAt(grid, number(3), number(4)), "swapRequested",
                                      Q_ARG(int, number(1)), Q_ARG(int, number(2)));
    }
}

} // namespace

class LayoutWidgetTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        qRegisterMetaType<API::CameraPtr>("API::CameraPtr");
        qRegisterMetaType<API::ServerPtr>("API::ServerPtr");
        qRegisterMetaType<API::LayoutPtr>("API::LayoutPtr");
        addServerToRoster("five"_s, {"a", "b", "c", "d", "e"});
        addServerToRoster("ten"_s, QVector<QString>(10, "camera"_s).toList());
        addServerToRoster("online"_s, {"on"}, true);
        addServerToRoster("forty"_s, QVector<QString>(40, "camera"_s).toList());
    }

    void edits_data()
    {
        rows<QString, QString, QString, QString>(
            {"before", "steps", "after", "told"},
            {{"opened", "a . . | . . b", "", "a . . | . . b", "+a +b"},
             {"row by row", "a . | . .", "add b, add c", "a b | c .", "+a +b +c"},
             {"no free cell", "a", "add b", "a", "+a"},
             {"closed twice", "a b", "close a, close a", ". b", "+a +b -a"},
             {"in two cells", "a a", "close a", ". .", "+a +a -a -a"},
             {"resized", "a b", "resize 3 1", "a | . | .", "+a +a +b -a -b"},
             {"on a placeholder", "a .", "drop b 0 1", "a b", "+a +b"},
             {"on a tile", "a .", "drop b 0 0", "b .", "+a +b -a"},
             {"nobody", "a .", "drop x 0 1, drop x 0 0, add x", "a .", "+a"},
             {"nothing on a tile", "a .", "move 0 1 0 0, move 7 7 0 0", "a .", "+a"},
             {"a span is transposed", "a:2x1 . | . .", "", "a:1x2 . | . .", "+a"},
             {"the span stays", "a:2x1 . | . .", "close a", ".:1x2 . | . .", "+a -a"},
             {"after it", "a:2x1 . | . .", "close a, drop b 0 0", "b . | . .", "+a +b -a"},
             {"under it", "a:2x2 . | . .", "drop b 1 1, add c", "a:2x2 c | . b", "+a +b +c"},
             {"a span moved", "a:2x2 . | . b", "move 1 1 0 0", "b . | . a", "+a +b"}});
    }

    void edits()
    {
        const auto [before, steps, after, told] = row<QString, QString, QString, QString>();
        LayoutWidget grid;
        QStringList log;
        connect(&grid, &LayoutWidget::cameraAdded, this,
                [&log](API::CameraPtr camera) { log << '+' + camera->name(); });
        connect(&grid, &LayoutWidget::cameraClosed, this,
                [&log](API::CameraPtr camera) { log << '-' + camera->name(); });
        const API::LayoutPtr opened = layoutOf(before);
        grid.openLayout(opened);
        const QString shown = cellsOf(grid);
        QSignalSpy modified(&grid, &LayoutWidget::layoutModified);
        edit(grid, steps);
        QCOMPARE(cellsOf(grid), after);
        log.sort();
        QCOMPARE(log.join(' '), told);
        QCOMPARE(modified.isEmpty(), shown == after);
        // What was opened is there to come back to.
        QCOMPARE(grid.savedLayout(), opened);
        QCOMPARE(*grid.workingLayout() == *opened, shown == after);
        QCOMPARE(opened->cellList(), layoutOf(before)->cellList());
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        QCOMPARE(cellsOf(grid), after);
        QCOMPARE(grid.playerCount(), int(after.count(QRegularExpression("[a-e]"))));
    }

    void oneTileAlone_data()
    {
        rows<QString, QString, QString>({"before", "steps", "seen"},
                                        {{"alone", "a b | . c", "alone b", "b"},
                                         {"and back", "a b | . c", "alone b, alone b", "all"},
                                         {"another", "a b | . c", "alone b, alone c", "c"},
                                         {"spanning", "a:2x2 . . | . . . | . b c", "alone a", "a"},
                                         {"in the middle", "b . . | . a . | . . c", "alone a", "a"},
                                         {"only one cell", "a", "alone a", "all"},
                                         {"closed", "a b", "alone b, close b", "all"},
                                         {"another closed", "a b", "alone b, close a", "all"},
                                         {"added", "a b .", "alone b, add c", "all"},
                                         {"no room", "a b", "alone b, add c", "b"},
                                         {"replaced", "a b", "alone b, drop c 0 1", "all"},
                                         {"moved", "a b", "alone b, move 0 0 0 1", "all"},
                                         {"dragged", "a b", "alone b, drag b", "all"},
                                         {"resized", "a b", "alone b, resize 2 2", "all"},
                                         {"opened again", "a b", "alone b, open it", "all"}});
    }

    void oneTileAlone()
    {
        const auto [before, steps, seen] = row<QString, QString, QString>();
        LayoutWidget grid;
        grid.resize(640, 480);
        grid.openLayout(layoutOf(before));
        grid.show();
        QSignalSpy modified(&grid, &LayoutWidget::layoutModified);
        edit(grid, steps.section(", "_s, 0, 0));
        QVERIFY(modified.isEmpty());
        edit(grid, steps.section(", "_s, 1));
        if (steps.endsWith("drag b"_s)) // which takes it along as it is
            QCOMPARE(grid.player(cameraNamed("b"_s))->size(), QSize(317, 476));
        QCoreApplication::processEvents();
        const bool isAlone = seen != "all"_s;
        QCOMPARE(grid.isMaximised(), isAlone);
        for (const VideoWidget *tile : grid.players())
            QCOMPARE(tile->isVisible(), !isAlone || tile->camera()->name() == seen);
        for (const VideoPlaceholder *placeholder : grid.findChildren<VideoPlaceholder *>())
            QCOMPARE(placeholder->isVisible(), !isAlone);
        if (isAlone)
            QCOMPARE(grid.player(cameraNamed(seen))->geometry(), QRect(2, 2, 636, 476));
    }

    void namesOnTiles()
    {
        LayoutWidget grid;
        grid.setNamesShown(true);
        grid.openLayout(layoutOf("a"_s));
        const QImage named = grid.players().first()->grab().toImage();
        grid.setNamesShown(false);
        QVERIFY(grid.players().first()->grab().toImage() != named);
    }

    /// No stream of two is begun anew without need, and in the end each has the right quality.
    void startsOfOneAlone_data()
    {
        rows<QString, int, int>({"steps", "starts", "quality"},
                                {{"alone", "alone on", 1, 2},
                                 {"and back", "alone on, alone on", 2, 1},
                                 {"gone", "alone on, clear", 1, -1},
                                 {"gone in a pause", "pause, alone on, close on, unpause", 0, -1},
                                 {"opened again", "alone on, open it", 1 + 2, 1},
                                 {"in a drag", "alone on, drag on", 1, 2},
                                 {"dragged", "alone on, drag on, dragged on", 2, 1},
                                 {"in a pause", "pause, alone on", 0, 1},
                                 {"after it", "pause, alone on, unpause", 1, 2},
                                 {"live again", "pause, alone on, unpause, playLive", 2, 2},
                                 {"stopped", "pause, alone on, unpause, stop", 0, 2}});
    }

    void startsOfOneAlone()
    {
        const auto [steps, starts, quality] = row<QString, int, int>();
        LayoutWidget grid;
        grid.openLayout(layoutOf("on on . . ."_s));
        grid.updateQuality();
        const LogCapture log;
        edit(grid, steps);
        QCoreApplication::processEvents();
        QCOMPARE(int(log.linesOf("Open url:"_s).size()), starts);
        const auto tiles = grid.players();
        int best = -1;
        for (const VideoWidget *tile : tiles)
            best = qMax(best, tile->quality());
        QCOMPARE(best, quality);
    }

    /// Who hears of a closed camera may open another layout right there.
    void layoutOpenedWithinAnother()
    {
        LayoutWidget grid;
        grid.openLayout(layoutOf("a b"_s));
        connect(&grid, &LayoutWidget::cameraClosed, this,
                [&grid] { grid.openLayout(layoutOf(". e"_s)); });
        QVERIFY(grid.openLayout(layoutOf("c | . | d"_s)));
        QCOMPARE(cellsOf(grid), "c | . | d"_s);
        QCOMPARE(grid.playerCount(), 2);
        QCOMPARE(grid.findChildren<VideoWidget *>().size(), 2);
        QCOMPARE(grid.findChildren<VideoPlaceholder *>().size(), 1);
        // The cell where that was dropped is no more.
        emit grid.player(cameraNamed("d"_s))->openCamera(cameraNamed("a"_s));
        QCOMPARE(cellsOf(grid), "a e"_s);
    }

    void savingKeepsTheObject()
    {
        LayoutWidget grid;
        grid.resizeLayout(1, 2);
        grid.saveLayout("Yard"_s);
        const API::LayoutPtr layout = grid.savedLayout();
        QVERIFY2(layout, "nothing had been opened before");
        QCOMPARE(grid.workingLayout(), layout);
        grid.addCamera(cameraNamed("a"_s));
        const API::LayoutPtr edited = grid.workingLayout();
        grid.addCamera(cameraNamed("b"_s));
        QCOMPARE(grid.workingLayout(), edited);
        QCOMPARE(layout->name(), "Yard"_s);
        QVERIFY(layout->cellList().isEmpty());
        grid.saveLayout("Gate"_s);
        QCOMPARE(grid.savedLayout(), layout);
        QCOMPARE(grid.workingLayout(), layout);
        QCOMPARE(layout->name(), "Gate"_s);
        // Opening an equal one keeps the tiles, opening none keeps nothing.
        const QPointer<VideoWidget> tile = grid.player(cameraNamed("a"_s));
        QVERIFY(!grid.openLayout(API::LayoutPtr::create(*layout)));
        QCOMPARE(grid.player(cameraNamed("a"_s)), tile.data());
        QCOMPARE(grid.savedLayout(), layout);
        grid.openLayout(API::LayoutPtr());
        grid.addCamera(cameraNamed("a"_s));
        QCOMPARE(grid.layout()->count(), 0);
    }

    void brokenLayouts_data()
    {
        // Of a cell, left is the row and top the column.
        rows<QSize, QList<QRect>, int>(
            {"columnsByRows", "cells", "tiles"},
            {{"no rows, no columns", {0, 0}, {{0, 0, 1, 1}}, 0},
             {"no columns", {0, 3}, {{0, 0, 1, 1}}, 0},
             {"negative size", {-2, -3}, {}, 0},
             {"no spans", {2, 2}, {{0, 0, 0, 0}, {1, 1, 0, 0}, {0, 1, -5, -1}, {1, 0, 1, -64}}, 4},
             {"overlapping", {3, 3}, {{0, 0, 3, 3}, {0, 1, 2, 2}, {1, 1, 2, 2}, {2, 2, 1, 1}}, 4},
             {"spans beyond the edge", {2, 2}, {{0, 0, 64, 64}, {1, 1, 64, 64}}, 2},
             {"outside", {2, 2}, {{-1, 0, 1, 1}, {0, -7, 1, 1}, {2, 2, 1, 1}, {1, 1, 1, 1}}, 1},
             {"far too many cells", {24, 24}, {{0, 0, 64, 64}, {23, 23, 64, 64}}, 2}});
    }

    void brokenLayouts()
    {
        const auto [columnsByRows, cells, tiles] = row<QSize, QList<QRect>, int>();
        const auto layout = API::LayoutPtr::create();
        layout->resize(64, 64);
        int number = 0;
        for (const QRect &cell : cells)
            layout->setCamera(rosterCamera("five"_s, ++number), cell.left(), cell.top(),
                              cell.width(), cell.height());
        LayoutWidget grid;
        grid.show();
        // Smaller only now: the cells that fall outside stay.
        layout->update({{"rows"_s, columnsByRows.height()}, {"columns"_s, columnsByRows.width()}});
        grid.openLayout(layout);
        QCOMPARE(grid.playerCount(), tiles);
        for (const VideoWidget *tile : grid.players())
            QVERIFY(tile->span().rows >= 1 && tile->span().columns >= 1);
        QCoreApplication::processEvents();
        grid.grab();

        // Whatever the user does with it then.
        grid.updateQuality();
        grid.addCamera(cameraNamed("e"_s));
        grid.addCamera(API::CameraPtr());
        for (VideoWidget *tile : grid.players()) {
            emit tile->swapRequested(0, 0);
            emit tile->swapRequested(1, 1);
        }
        if (VideoPlaceholder *placeholder = grid.findChild<VideoPlaceholder *>())
            emit placeholder->openCamera(cameraNamed("e"_s));
        QCoreApplication::processEvents();
        grid.resizeLayout(2, 2);
        QCOMPARE(grid.workingLayout()->rows(), 2);
        QVERIFY(grid.playerCount() <= 4);
        for (VideoWidget *tile : grid.players())
            emit tile->closed(tile);
        QCOMPARE(grid.playerCount(), 0);
        QCOMPARE(grid.findChildren<VideoWidget *>().size(), 0);
    }

    void tilesCoverTheirCells()
    {
        LayoutWidget grid;
        grid.resize(908, 908);
        grid.openLayout(layoutOf("a:2x1 . . | . b . | . . ."_s));
        grid.show();
        // The bars that come up with the mouse must not make their tile ask for more room.
        QEnterEvent enter(QPointF(5, 5), QPointF(5, 5), QPointF(5, 5));
        QCoreApplication::sendEvent(grid.player(cameraNamed("b"_s)), &enter);
        QCoreApplication::processEvents();
        QCOMPARE(widgetAt(grid, 0, 0)->geometry(), QRect(2, 2, 602, 300));
        QCOMPARE(widgetAt(grid, 1, 1)->geometry(), QRect(304, 304, 300, 300));
        QCOMPARE(widgetAt(grid, 2, 2)->geometry(), QRect(606, 606, 300, 300));
        const QImage picture = grid.grab().toImage();
        QCOMPARE(picture.pixelColor(303, 450), QColor(41, 44, 49));
        QVERIFY(picture.pixelColor(305, 450) != QColor(41, 44, 49));
    }

    void hintsStackFromTheTopAndGo()
    {
        LayoutWidget grid;
        grid.resize(600, 400);
        grid.openLayout(layoutOf("a"_s));
        grid.show();
        emit grid.players().first()->snapshotSaved("/tmp"_s);
        emit grid.players().first()->exportError("/tmp"_s);
        const auto hints = grid.findChildren<PlayerNotification *>();
        const QAbstractEventDispatcher &timers = *QAbstractEventDispatcher::instance();
        const QPointer<PlayerNotification> lower = hints.value(0);
        const QPointer<PlayerNotification> upper = hints.value(1);
        // However long the slides take here, the hints don't go by themselves meanwhile.
        for (PlayerNotification *hint : hints)
            hint->killTimer(timers.registeredTimers(hint).first().timerId);
        QTRY_COMPARE(upper->pos(), QPoint(10, 10));
        QTRY_COMPARE(lower->pos(), QPoint(10, 10 + upper->height() + 5));
        emit upper->closed();
        QTRY_VERIFY(!upper);
        QTRY_COMPARE(lower->pos(), QPoint(10, 10));
        emit lower->closed();
        QTRY_VERIFY(!lower);
    }

    void droppedServerFillsTheGrid_data()
    {
        rows<QString, QString, QSize, bool>(
            {"server", "before", "after", "announced"},
            {{"ten on one cell", "ten", ".", {4, 4}, true},
             {"forty on one cell", "forty", ".", {6, 6}, true},
             {"five fit", "five", ". . . | . . . | . . .", {3, 3}, false},
             {"five on 3 columns by 2 rows", "five", "a a a | a a .", {3, 4}, false},
             {"five on one taken cell of four", "five", "a . | . .", {2, 3}, false},
             {"ten on a full row", "ten", "a a", {2, 6}, false},
             {"forty on a full row", "forty", "a a", {2, 6}, false},
             {"five on more rows than six", "five", "a | a | a | a | a | a | .", {1, 6}, false},
             {"one that has gone", "gone", ".", {1, 1}, false}});
    }

    void droppedServerFillsTheGrid()
    {
        const auto [server, before, after, announced] = row<QString, QString, QSize, bool>();
        LayoutWidget grid;
        grid.openLayout(layoutOf(before));
        QSignalSpy serverAdded(&grid, &LayoutWidget::serverAdded);
        QSignalSpy layoutDropped(&grid, &LayoutWidget::layoutDropped);
        for (const QString &format : {"camera"_s, "layout-swap"_s, "text/uri-list"_s})
            QVERIFY(!drop(&grid, format, server));
        QVERIFY2(drop(&grid, "layout"_s, server), "no layout, but it could be one");
        QVERIFY(drop(&grid, "server"_s, server));
        QVERIFY(layoutDropped.isEmpty() && !grid.property("drop").toBool());
        const API::LayoutPtr filled = grid.workingLayout();
        QCOMPARE(QSize(filled->columns(), filled->rows()), after);
        QCOMPARE(serverAdded.count(), announced ? 1 : 0);
        // One after the other as far as there is room.
        const int taken = before.count('a');
        for (int cell = taken, width = after.width(); cell < width * after.height(); ++cell)
            QCOMPARE(filled->cellAt(cell / width, cell % width).camera,
                     rosterCamera(server, cell - taken + 1));
    }

    /// At every edge of the outer cells, and of the first one.
    void sizeUnderMouse()
    {
        const int sizes[]{0, 1, 1, 2, 6, 0}, xs[]{9, 10, 23, 24, 93, 94},
            ys[]{9, 10, 21, 22, 81, 82};
        for (int place = 0; place < 36; ++place) {
            const QPoint position(xs[place % 6], ys[place / 6]);
            const QSize size(sizes[place % 6], sizes[place / 6]);
            const QRect hovered(QPoint(), size), current(QPoint(), QSize(2, 3));
            const QPointer<GridSizeEditor> editor = new GridSizeEditor;
            QSignalSpy selected(editor.data(), &GridSizeEditor::sizeSelected);
            editor->setCurrentSize(3, 2);
            editor->show();
            QTest::mouseMove(editor, position);
            const QImage picture = editor->grab().toImage();
            for (int x = 0; x < 6; ++x) {
                for (int y = 0; y < 6; ++y)
                    QCOMPARE(picture.pixelColor(16 + 14 * x, 15 + 12 * y),
                             hovered.contains(x, y)   ? QColor(62, 183, 253)
                             : current.contains(x, y) ? QColor(129, 134, 144)
                                                      : QColor(52, 55, 60));
            }
            QTest::mousePress(editor, Qt::LeftButton, Qt::NoModifier, position);
            const QVariantList told{size.height(), size.width()};
            QCOMPARE(selected.value(0), size.isEmpty() ? QVariantList() : told);
            QTRY_COMPARE(editor.isNull(), size.isEmpty());
            delete editor;
        }
    }
};

QTEST_MAIN(LayoutWidgetTest)
#include "LayoutWidgetTest.moc"
