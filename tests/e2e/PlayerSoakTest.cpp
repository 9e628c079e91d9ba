// SPDX-License-Identifier: MIT
#include "tests/e2e/EndToEnd.h"

#include <csignal>

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

int cycleCount()
{
    return qEnvironmentVariableIsSet("ZORVANE_SOAK") ? 500 : 20;
}

void killAtRandomMoment(VideoWidget *tile)
{
    QTest::qWait(QRandomGenerator::global()->bounded(longestLifeMs));
    const qint64 child = childOf(tile);
    QVERIFY(child > 0);
    QCOMPARE(::kill(static_cast<pid_t>(child), SIGKILL), 0);
    QTRY_COMPARE(childOf(tile), 0);
}

} // namespace

/// The real player on a real stream, killed and closed over and over: nothing may stay.
class PlayerSoakTest : public EndToEndTest
{
    Q_OBJECT

private slots:
    void openedKilledAndClosed()
    {
        startWorld(1, 1, 0);
        // The placeholders' pictures collect in Qt's cache up to its limit, which would pass for
        // a leak until it is reached; and hundreds of cycles would drown the figures.
        QPixmapCache::setCacheLimit(pictureCacheKiB);
        QLoggingCategory::setFilterRules("default.debug=false\ndefault.warning=false"_s);
        // Signed in without a window, whose requests would open and close sockets of their own.
        API::CloudAPIClient client;
        QSignalSpy signedIn(&client, &API::CloudAPIClient::loginSuccess);
        client.tryLogin(service.email(), service.password());
        QTRY_COMPARE_WITH_TIMEOUT(signedIn.count(), 1, replyDeadlineMs);
        QSignalSpy gotRoster(&client, &API::CloudAPIClient::rosterUpdated);
        client.updateRoster();
        QTRY_COMPARE_WITH_TIMEOUT(gotRoster.count(), 1, replyDeadlineMs);
        const DemoCamera only = world.first();
        const API::CameraPtr camera =
            client.serverList().value(only.server)->cameras().value(only.camera);
        QVERIFY(camera);

        GUI::LayoutWidget grid;
        connect(&grid, &GUI::LayoutWidget::cameraAdded, this,
                [&](const API::CameraPtr &added) { grid.player(added)->playLive(); });
        grid.resize(640, 360);
        grid.show();
        grid.openLayout(API::LayoutPtr::create());

        ProcessTraces before;
        qint64 memoryBefore = 0;
        for (int cycle = -warmUpCycles; cycle < cycleCount(); ++cycle) {
            if (cycle == 0) {
                QTRY_COMPARE(service.openStreams(), 0);
                before = ProcessTraces::now();
                memoryBefore = residentBytes();
            }
            grid.addCamera(camera);
            const QPointer<VideoWidget> tile = grid.player(camera);
            QVERIFY(tile);
            // Every other child dies before its first picture or after, and its user plays anew.
            if (cycle % 2 == 0) {
                killAtRandomMoment(tile);
                QVERIFY(tile->playLive());
            }
            QTRY_COMPARE_WITH_TIMEOUT(stripOf(tile).value_or(Strip()).camera, only.number,
                                      pictureDeadlineMs);
            if (cycle == 0) {
                const ProcessTraces during = ProcessTraces::now();
                QCOMPARE(during.mappings, before.mappings + 1);
                QCOMPARE(during.files, before.files + 1);
                QCOMPARE(during.children, before.children + 1);
                QVERIFY(during.descriptors > before.descriptors);
            }
            part<QPushButton>(tile, "closeButton")->click();
            QTRY_VERIFY(!tile);
        }
        QTRY_COMPARE(ProcessTraces::now().text(), before.text());
        QTRY_COMPARE(service.openStreams(), 0);
        const qint64 growth = residentBytes() - memoryBefore;
        if (memoryTells)
            QVERIFY2(growth < memoryGrowthLimit, QByteArray::number(growth));
    }
};

END_TO_END_MAIN(PlayerSoakTest)
#include "PlayerSoakTest.moc"
