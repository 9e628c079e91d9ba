// SPDX-License-Identifier: MIT
#include "tests/e2e/EndToEnd.h"

#include "tests/e2e/Wall.h"

using GUI::MainWindow;
using GUI::Player::VideoWidget;

namespace {

VideoWidget *tileOf(MainWindow *window, const DemoCamera &camera)
{
    const auto tiles = gridOf(window)->players();
    for (VideoWidget *tile : tiles) {
        const auto strip = stripOf(tile);
        if (strip && strip->camera == camera.number)
            return tile;
    }
    return nullptr;
}

/// In the middle of the painted tile's left and lower edge.
bool hasBorder(VideoWidget *tile)
{
    const QColor selection(62, 183, 253);
    const QImage painted = tile->grab().toImage();
    return painted.pixelColor(1, painted.height() / 2) == selection &&
           painted.pixelColor(painted.width() / 2, painted.height() - 2) == selection;
}

MainWindow *cloneOf(MainWindow *window)
{
    const auto before = mainWindows();
    part<QAction>(window, "actionClone_window")->trigger();
    const auto after = mainWindows();
    for (MainWindow *candidate : after) {
        if (!before.contains(candidate))
            return candidate;
    }
    return nullptr;
}

void open(MainWindow *window, const DemoCamera &camera)
{
    const auto cardOfCamera = [&] { return card(window, camera.server, camera.camera); };
    QTRY_VERIFY_WITH_TIMEOUT(cardOfCamera(), pollDeadlineMs);
    QTest::mouseClick(cardOfCamera(), Qt::LeftButton);
    QTRY_VERIFY_WITH_TIMEOUT(tileOf(window, camera), pictureDeadlineMs);
}

} // namespace

/// Several windows of one program: what they share, and how each ends.
class WindowsTest : public EndToEndTest
{
    Q_OBJECT

private slots:
    void initTestCase() { startWorld(1, 2, 0); }

    void twoWindowsOfOneProgram()
    {
        const DemoCamera left = world.at(0);
        const DemoCamera right = world.at(1);
        QVERIFY(enter(service));
        const QPointer<MainWindow> first = mainWindow();
        open(first, left);
        QVERIFY(!hasBorder(tileOf(first, left)));

        // One player, but two cells over both windows: the active tile is marked.
        QPointer<MainWindow> second = cloneOf(first);
        QVERIFY(second);
        QVERIFY(hasBorder(tileOf(first, left)));
        second->close();
        QTRY_VERIFY(!second);
        QVERIFY(!hasBorder(tileOf(first, left)));

        // The active camera is shared, where a window shows it.
        second = cloneOf(first);
        open(second, left);
        second->openNewLayout();
        QTRY_COMPARE(paintedWall(second, 2, 2), WallPlan(2, 2).text());
        for (int column = 0; column < 2; ++column)
            QVERIFY(dropOn(widgetInCell(gridOf(second), {column, 0}, 2, 2),
                           GUI::cameraDrag({world.at(column).server, world.at(column).camera}),
                           Qt::CopyAction));
        const QString wall = "%1 %2 | . ."_s.arg(left.number).arg(right.number);
        QTRY_COMPARE_WITH_TIMEOUT(paintedWall(second, 2, 2), wall, pictureDeadlineMs);
        const auto borders = [&] {
            return QList<bool>{hasBorder(tileOf(first, left)), hasBorder(tileOf(second, left)),
                               hasBorder(tileOf(second, right))};
        };
        QTest::mouseClick(tileOf(second, right), Qt::LeftButton);
        QCOMPARE(borders(), (QList<bool>{false, false, true}));
        QTest::mouseClick(tileOf(first, left), Qt::LeftButton);
        QCOMPARE(borders(), (QList<bool>{true, true, false}));

        // A closed window leaves the other playing.
        QTRY_COMPARE(service.openStreams(), 3);
        const qint64 child = childOf(tileOf(first, left));
        second->close();
        QTRY_VERIFY(!second);
        QTRY_COMPARE(service.openStreams(), 1);
        QVERIFY(everyTileMoves(first));
        QCOMPARE(childOf(tileOf(first, left)), child);

        // A sign-out in one closes every one.
        second = cloneOf(first);
        open(second, right);
        emit second->signout();
        QTRY_VERIFY(!first && !second);
        QVERIFY(loginDialog());
        QTRY_COMPARE(service.openStreams(), 0);
    }
};

END_TO_END_MAIN(WindowsTest)
#include "WindowsTest.moc"
