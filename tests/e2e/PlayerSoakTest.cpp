// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include <csignal>

#include <sys/types.h>

#include "API/Camera.h"
#include "API/CloudAPIClient.h"
#include "API/Layout.h"
#include "API/Server.h"
#include "GUI/LayoutWidget.h"
#include "GUI/Player/VideoWidget.h"
#include "demo/client/DemoService.h"
#include "tests/e2e/EndToEnd.h"
#include "tests/support/ProcessTraces.h"

using GUI::Player::VideoWidget;

namespace {

#if defined(__SANITIZE_ADDRESS__)
constexpr bool memoryTells = false; // what is freed is kept for a while
#else
constexpr bool memoryTells = true;
#endif

constexpr qint64 memoryGrowthLimit = 4 << 20;
constexpr int pictureCacheKiB = 1024;
constexpr int warmUpCycles = 5;
// Longer than a stream takes to its first picture, so that kills fall before and after it.
constexpr int longestLifeMs = 300;
// A child is replaced when it has been running for longer than this.
constexpr int watchdogSeconds = 11;

bool isSoak()
{
    return qEnvironmentVariableIsSet("ZORVANE_SOAK");
}

int cycleCount()
{
    return isSoak() ? 500 : 25;
}

int killCount()
{
    return isSoak() ? 200 : 10;
}

/// Lets the program live on for a while, up to `longestLifeMs`.
void liveForRandomTime()
{
    const int life = QRandomGenerator::global()->bounded(longestLifeMs);
    QElapsedTimer time;
    time.start();
    while (time.elapsed() < life)
        QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
}

void killChild(VideoWidget *tile)
{
    const qint64 child = childOf(tile);
    QVERIFY(child > 0);
    QCOMPARE(::kill(static_cast<pid_t>(child), SIGKILL), 0);
    QTRY_COMPARE(childOf(tile), 0);
}

} // namespace

/// The real player on a real stream, killed and closed over and over: nothing may stay.
class PlayerSoakTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        DemoService::Options options;
        options.plain = true;
        options.servers = 1;
        options.cameras = 1;
        options.lanServers = 0;
        QVERIFY2(service.start(options), qPrintable(service.errorString()));
        useService(service);

        // The placeholders' pictures collect in Qt's cache up to its limit, which would pass for a
        // leak until it is reached.
        QPixmapCache::setCacheLimit(pictureCacheKiB);
        // Hundreds of cycles would drown the figures.
        QLoggingCategory::setFilterRules("default.debug=false\ndefault.warning=false"_s);
        // Signed in without a window, whose requests would open and close sockets of their own.
        API::CloudAPIClient client;
        QSignalSpy signedIn(&client, &API::CloudAPIClient::loginSuccess);
        client.tryLogin(service.email(), service.password());
        QTRY_COMPARE_WITH_TIMEOUT(signedIn.count(), 1, replyDeadlineMs);
        QSignalSpy gotRoster(&client, &API::CloudAPIClient::rosterUpdated);
        client.updateRoster();
        QTRY_COMPARE_WITH_TIMEOUT(gotRoster.count(), 1, replyDeadlineMs);
        const DemoCamera only = service.cameras().value(0);
        cameraNumber = only.number;
        camera = client.serverList().value(only.server)->cameras().value(only.camera);
        QVERIFY(camera);

        grid = std::make_unique<GUI::LayoutWidget>();
        connect(grid.get(), &GUI::LayoutWidget::cameraAdded, this,
                [this](const API::CameraPtr &added) { grid->player(added)->playLive(); });
        grid->resize(640, 360);
        grid->show();
        grid->openLayout(API::LayoutPtr::create());
    }

    void cleanupTestCase()
    {
        setClockAheadSeconds(0);
        grid.reset();
        service.stop();
    }

    void openedAndClosed()
    {
        ProcessTraces before;
        qint64 memoryBefore = 0;
        for (int cycle = -warmUpCycles; cycle < cycleCount(); ++cycle) {
            if (cycle == 0) {
                QTRY_COMPARE(service.openStreams(), 0);
                before = ProcessTraces::now();
                memoryBefore = residentBytes();
            }
            VideoWidget *tile = openTile();
            QVERIFY(tile);
            QTRY_COMPARE_WITH_TIMEOUT(stripOf(tile).value_or(Strip()).camera, cameraNumber,
                                      pictureDeadlineMs);
            if (cycle == 0) {
                const ProcessTraces during = ProcessTraces::now();
                QCOMPARE(during.mappings, before.mappings + 1);
                QCOMPARE(during.files, before.files + 1);
                QCOMPARE(during.children, before.children + 1);
                QVERIFY(during.descriptors > before.descriptors);
            }
            closeTile();
        }
        nothingStays(before, memoryBefore);
    }

    void killedAtRandomMoments()
    {
        QTRY_COMPARE(service.openStreams(), 0);
        const ProcessTraces before = ProcessTraces::now();
        const qint64 memoryBefore = residentBytes();
        VideoWidget *tile = openTile();
        QVERIFY(tile);
        for (int kill = 0; kill < killCount(); ++kill) {
            if (kill % 2 == 0)
                killedWhilePlaying(tile);
            else
                killedAnyTime(tile);
            if (QTest::currentTestFailed())
                return;
        }
        QVERIFY(showsMovingPicture(tile, cameraNumber));
        closeTile();
        nothingStays(before, memoryBefore);
    }

private:
    VideoWidget *openTile()
    {
        grid->addCamera(camera);
        return grid->player(camera);
    }

    void closeTile()
    {
        const QPointer<VideoWidget> tile = grid->player(camera);
        tile->findChild<QPushButton *>("closeButton"_s)->click();
        QTRY_VERIFY(!tile);
        QCOMPARE(grid->playerCount(), 0);
    }

    /// The tile itself brings the child back.
    void killedWhilePlaying(VideoWidget *tile)
    {
        QTRY_VERIFY_WITH_TIMEOUT(tile->isPlaying(), pictureDeadlineMs);
        liveForRandomTime();
        killChild(tile);
        clockAheadSeconds += watchdogSeconds;
        setClockAheadSeconds(clockAheadSeconds);
        QTimerEvent tick(0);
        QCoreApplication::sendEvent(tile, &tick);
        QVERIFY(childOf(tile) > 0);
    }

    /// Its user does: the tile gives up after three children in a row, and does not bring one back
    /// that had no picture yet.
    void killedAnyTime(VideoWidget *tile)
    {
        QVERIFY(tile->playLive());
        liveForRandomTime();
        killChild(tile);
        QVERIFY(tile->playLive());
        QVERIFY(childOf(tile) > 0);
    }

    void nothingStays(const ProcessTraces &before, qint64 memoryBefore)
    {
        QTRY_COMPARE(ProcessTraces::now().text(), before.text());
        QTRY_COMPARE(service.openStreams(), 0);
        const qint64 growth = residentBytes() - memoryBefore;
        qInfo("%s; memory grew by %lld KiB", qPrintable(before.text()),
              static_cast<long long>(growth / 1024));
        if (memoryTells)
            QVERIFY2(growth < memoryGrowthLimit, QByteArray::number(growth));
    }

    DemoService service;
    API::CameraPtr camera;
    int cameraNumber = 0;
    std::unique_ptr<GUI::LayoutWidget> grid;
    int clockAheadSeconds = 0;
};

int main(int argc, char **argv)
{
    return runEndToEnd(argc, argv, [] { return std::make_unique<PlayerSoakTest>(); });
}
#include "PlayerSoakTest.moc"
