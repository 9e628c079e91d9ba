// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "API/Camera.h"
#include "App/Settings.h"
#include "GUI/CameraWidget.h"
#include "GUI/LayoutWidget.h"
#include "GUI/LoginDialog.h"
#include "GUI/MainWindow.h"
#include "GUI/Player/VideoWidget.h"
#include "demo/client/DemoService.h"
#include "tests/e2e/EndToEnd.h"
#include "tests/e2e/Wall.h"
#include "tests/support/LogCapture.h"

using GUI::MainWindow;
using GUI::Player::VideoWidget;

namespace {

const QColor selection(62, 183, 253);

VideoWidget *tileOf(MainWindow *window, int cameraNumber)
{
    const QList<VideoWidget *> tiles = gridOf(window)->players();
    for (VideoWidget *tile : tiles) {
        const auto strip = stripOf(tile);
        if (strip && strip->camera == cameraNumber)
            return tile;
    }
    return nullptr;
}

/// In the middle of each edge of the painted tile.
bool hasSelectionBorder(VideoWidget *tile)
{
    const QImage painted = tile->grab().toImage();
    const int right = painted.width() - 1;
    const int bottom = painted.height() - 1;
    return painted.pixelColor(right / 2, 1) == selection &&
           painted.pixelColor(right / 2, bottom - 1) == selection &&
           painted.pixelColor(1, bottom / 2) == selection &&
           painted.pixelColor(right - 1, bottom / 2) == selection;
}

QSlider *soundSlider(MainWindow *window)
{
    return window->findChild<QSlider *>("soundSlider"_s);
}

/// The volume that the tile itself has, from the line it logs when it is clicked.
QString volumeOf(VideoWidget *tile)
{
    const LogCapture log;
    QTest::mouseClick(tile, Qt::LeftButton);
    const QString line = log.linesOf("Activated camera:"_s).value(0);
    return line.section(" volume: "_s, 1).section(QLatin1Char(' '), 0, 0);
}

} // namespace

/// Several windows of one program: what they share, and how each ends.
class WindowsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        DemoService::Options options;
        options.plain = true;
        options.servers = 1;
        options.cameras = 2;
        options.lanServers = 0;
        QVERIFY2(service.start(options), qPrintable(service.errorString()));
        useService(service);
        const QVector<DemoCamera> world = service.cameras();
        QCOMPARE(world.size(), 2);
        left = world.at(0);
        right = world.at(1);
        QVERIFY(enter(service));
        first = mainWindow();
    }

    void cleanupTestCase()
    {
        leave();
        service.stop();
    }

    void loneCameraHasNoBorder()
    {
        open(first, left);
        QVERIFY(showsMovingPicture(tileOf(first, left.number), left.number));
        QVERIFY(!hasSelectionBorder(tileOf(first, left.number)));
    }

    void secondWindowGivesTheActiveTileItsBorder()
    {
        second = cloneOf(first);
        QVERIFY(second);
        // One player, but two cells over both windows.
        QVERIFY(hasSelectionBorder(tileOf(first, left.number)));
        second->close();
        QTRY_VERIFY(!second);
        QVERIFY(!hasSelectionBorder(tileOf(first, left.number)));

        second = cloneOf(first);
        open(second, left);
        QVERIFY(hasSelectionBorder(tileOf(first, left.number)));
    }

    void activeCameraIsShared()
    {
        second->openNewLayout();
        QTRY_COMPARE(paintedWall(second, 2, 2), WallPlan(2, 2).text());
        for (int column = 0; column < 2; ++column) {
            const DemoCamera &camera = column == 0 ? left : right;
            QVERIFY(dropOn(widgetInCell(gridOf(second), {column, 0}, 2, 2),
                           *cameraDrag(camera.server, camera.camera), Qt::CopyAction));
        }
        const QString wall = "%1 %2 | . ."_s.arg(left.number).arg(right.number);
        QTRY_COMPARE_WITH_TIMEOUT(paintedWall(second, 2, 2), wall, pictureDeadlineMs);

        QTest::mouseClick(tileOf(second, right.number), Qt::LeftButton);
        QVERIFY(hasSelectionBorder(tileOf(second, right.number)));
        QVERIFY(!hasSelectionBorder(tileOf(second, left.number)));
        QVERIFY2(!hasSelectionBorder(tileOf(first, left.number)), "a camera of one window only");

        QTest::mouseClick(tileOf(first, left.number), Qt::LeftButton);
        QVERIFY(hasSelectionBorder(tileOf(first, left.number)));
        QVERIFY(hasSelectionBorder(tileOf(second, left.number)));
        QVERIFY(!hasSelectionBorder(tileOf(second, right.number)));
    }

    void volumeIsShared()
    {
        soundSlider(second)->setValue(73);
        QCOMPARE(soundSlider(first)->value(), 73);
        QCOMPARE(App::settings().value("sound/volume"_s).toInt(), 73);
        soundSlider(first)->setValue(21);
        QCOMPARE(soundSlider(second)->value(), 21);
        QCOMPARE(App::settings().value("sound/volume"_s).toInt(), 21);
        QCOMPARE(volumeOf(tileOf(first, left.number)), "21"_s);
        QCOMPARE(volumeOf(tileOf(second, right.number)), "21"_s);
    }

    void closedWindowLeavesTheOtherPlaying()
    {
        QTRY_COMPARE(service.openStreams(), 3);
        const qint64 child = childOf(tileOf(first, left.number));
        second->close();
        QTRY_VERIFY(!second);
        QCOMPARE(mainWindows(), QList<MainWindow *>{first});
        QTRY_COMPARE(service.openStreams(), 1);
        QVERIFY(everyTileMoves(first));
        QCOMPARE(childOf(tileOf(first, left.number)), child);
        QVERIFY(!hasSelectionBorder(tileOf(first, left.number)));
    }

    void signOutClosesEveryWindow()
    {
        second = cloneOf(first);
        open(second, right);
        emit second->signout();
        QTRY_VERIFY(!first && !second);
        QVERIFY(loginDialog());
        QTRY_COMPARE(service.openStreams(), 0);
    }

private:
    MainWindow *cloneOf(MainWindow *window)
    {
        const QList<MainWindow *> before = mainWindows();
        window->findChild<QAction *>("actionClone_window"_s)->trigger();
        const QList<MainWindow *> after = mainWindows();
        for (MainWindow *candidate : after) {
            if (!before.contains(candidate))
                return candidate;
        }
        return nullptr;
    }

    void open(MainWindow *window, const DemoCamera &camera)
    {
        const auto cardOfCamera = [&]() -> GUI::CameraWidget * {
            const QList<GUI::CameraWidget *> cards = window->findChildren<GUI::CameraWidget *>();
            for (GUI::CameraWidget *card : cards) {
                if (card->camera()->serverId() == camera.server &&
                    card->camera()->id() == camera.camera)
                    return card;
            }
            return nullptr;
        };
        QTRY_VERIFY_WITH_TIMEOUT(cardOfCamera(), pollDeadlineMs);
        QTest::mouseClick(cardOfCamera(), Qt::LeftButton);
        QTRY_VERIFY_WITH_TIMEOUT(tileOf(window, camera.number), pictureDeadlineMs);
    }

    DemoService service;
    DemoCamera left;
    DemoCamera right;
    QPointer<MainWindow> first;
    QPointer<MainWindow> second;
};

int main(int argc, char **argv)
{
    return runEndToEnd(argc, argv, [] { return std::make_unique<WindowsTest>(); });
}
#include "WindowsTest.moc"
