// SPDX-License-Identifier: MIT
#include "tests/e2e/EndToEnd.h"

#include <cmath>
#include <csignal>

#include "tests/e2e/Wall.h"
#include "tests/support/PlayerProcess.h"

using GUI::Player::VideoWidget;

namespace {

constexpr int minuteMs = 60'000;
constexpr qint64 maxApartMs = 3000;
constexpr qint64 maxFromCursorMs = 1000;
constexpr qint64 maxStepBackMs = 2000;
constexpr double wantedShare = 0.99;
constexpr int tightestZoom = 100;

/// A reading each quarter of a second, for a minute if the large sizes are asked for.
int readingsWanted()
{
    return qEnvironmentVariableIsSet("ZORVANE_SOAK") ? 240 : 30;
}

} // namespace

/// Four cameras with different gaps, played from one archive.
class ArchiveTest : public EndToEndTest
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        qputenv("ASAN_OPTIONS", ownSignals);
        startWorld(1, 4, 0);
        setRecords(world.at(0), {"12:00:00", "12:20:00"});
        setRecords(world.at(1), {"12:00:00", "12:00:30", "12:00:42", "12:20:00"});
        setRecords(world.at(2), {"12:00:10", "12:20:00"});
        setRecords(world.at(3), {"12:00:00", "12:20:00", "12:30:00", "12:40:00"});
        QVERIFY(enter(service));
        for (const DemoCamera &each : qAsConst(world))
            QTRY_VERIFY_WITH_TIMEOUT(card(each.server, each.camera), pollDeadlineMs);
        mainWindow()->resize(1500, 900);
    }

    /// Opens the wall of four at the archive's day, with noon in the middle of the strip.
    void init()
    {
        const auto layout = API::LayoutPtr::create();
        layout->resize(2, 3);
        for (int index = 0; index < 4; ++index)
            layout->setCamera(camera(index), index / 2, index % 2, 1, 1);
        QVERIFY(mainWindow()->openLayout(layout));
        press(mainWindow(), "showRecordsButton");
        QVERIFY(timeline()->isVisible());
        if (timeline()->startValue().date() == QDate::currentDate())
            press(mainWindow(), "prevDayButton");
        QCOMPARE(timeline()->startValue().date(), at("12:00:00").date());
        for (int index = 0; index < 4; ++index)
            QTRY_VERIFY_WITH_TIMEOUT(camera(index)->hasRecords(at("12:00:00").date()),
                                     replyDeadlineMs);
        timeline()->zoom(tightestZoom);
        QVERIFY(timeline()->startValue() < at("11:58:30"));
        QVERIFY(timeline()->endValue() > at("12:01:00"));
    }

    void tilesStayTogether()
    {
        click(at("12:01:00"));
        for (int index = 0; index < 4; ++index)
            QTRY_VERIFY_WITH_TIMEOUT(showsNear(index, cursor(), maxApartMs), pictureDeadlineMs);
        int together = 0;
        int atCursor = 0;
        const QDateTime started = cursor();
        QDateTime last = started;
        for (int reading = 0; reading < readingsWanted(); ++reading) {
            QTest::qWait(250);
            QList<QDateTime> shown;
            for (int index = 0; index < 4; ++index) {
                if (const auto moment = shownBy(tileOf(index)))
                    shown << *moment;
            }
            std::sort(shown.begin(), shown.end());
            together += !shown.isEmpty() && shown.first().msecsTo(shown.last()) <= maxApartMs;
            atCursor +=
                !shown.isEmpty() && std::abs(shown.first().msecsTo(cursor())) <= maxFromCursorMs;
            // New records of the day restart the tiles at the cursor.
            QVERIFY(cursor().msecsTo(last) <= maxStepBackMs);
            last = cursor();
        }
        QVERIFY2(together >= std::floor(wantedShare * readingsWanted()), "tiles drift apart");
        QVERIFY2(atCursor >= std::floor(wantedShare * readingsWanted()), "the cursor drifts away");
        QVERIFY(last > started);

        // Eight times as fast they still show one moment, by the strips.
        part<QSlider>(mainWindow(), "speedSlider")->setValue(3);
        const QDateTime fast = cursor();
        QTRY_VERIFY_WITH_TIMEOUT(cursor() > fast.addSecs(20), pictureDeadlineMs);
        for (int index = 0; index < 4; ++index)
            QTRY_VERIFY_WITH_TIMEOUT(showsNear(index, cursor(), 8 * maxApartMs), pictureDeadlineMs);
        part<QSlider>(mainWindow(), "speedSlider")->setValue(0);
    }

    void gapsAreJumpedOrWaitedForUntilLive()
    {
        // Before the first record: the play jumps to it.
        click(at("11:58:40"));
        QTRY_VERIFY_WITH_TIMEOUT(cursor() >= at("12:00:00"), pictureDeadlineMs);
        QTRY_VERIFY_WITH_TIMEOUT(showsNear(0, cursor(), maxApartMs), pictureDeadlineMs);
        QVERIFY(cursor() < at("12:05:00"));
        // This one's record begins ten seconds later.
        QTRY_VERIFY_WITH_TIMEOUT(showsNear(2, cursor(), maxApartMs), pictureDeadlineMs);
        QVERIFY(cursor() >= at("12:00:09"));

        click(at("12:00:22"));
        QTRY_VERIFY_WITH_TIMEOUT(showsNear(1, cursor(), maxApartMs), pictureDeadlineMs);
        // A tile that ran out ahead of the cursor plays its end again until the cursor is there
        // too; then it rests in its gap while the others play.
        const auto rests = [&] { return cursor() >= at("12:00:33") && !tileOf(1)->isPlaying(); };
        QTRY_VERIFY_WITH_TIMEOUT(rests(), pictureDeadlineMs);
        QVERIFY(cursor() < at("12:00:42"));
        QVERIFY(tileOf(0)->isPlaying());
        QTRY_VERIFY_WITH_TIMEOUT(tileOf(1)->isPlaying() && showsNear(1, cursor(), maxApartMs),
                                 pictureDeadlineMs);
        QVERIFY(cursor() >= at("12:00:41"));

        press(mainWindow(), "goLiveButton");
        QVERIFY(!timeline()->isVisible());
        for (int index = 0; index < 4; ++index) {
            const auto isLive = [&] {
                const std::optional<Strip> strip = stripOf(tileOf(index));
                const qint64 now = QDateTime::currentMSecsSinceEpoch();
                return strip && StripReader::ageMs(*strip, now) < 5000;
            };
            QTRY_VERIFY_WITH_TIMEOUT(isLive(), pictureDeadlineMs);
        }
    }

    void crashesHoldNobody_data()
    {
        rows<int>({"signal"}, {{"SIGSEGV", SIGSEGV},
                               {"SIGBUS", SIGBUS},
                               {"SIGFPE", SIGFPE},
                               {"SIGILL", SIGILL},
                               {"SIGABRT", SIGABRT}});
    }

    void crashesHoldNobody()
    {
        const auto [number] = row<int>();
        click(at("12:01:00"));
        for (int index = 0; index < 4; ++index)
            QTRY_VERIFY_WITH_TIMEOUT(showsNear(index, cursor(), maxApartMs), pictureDeadlineMs);
        const int victim = number % 4;
        const qint64 child = childOf(tileOf(victim));
        QVERIFY(child > 0);
        const QDateTime before = cursor();
        QCOMPARE(::kill(pid_t(child), number), 0);
        QTRY_VERIFY_WITH_TIMEOUT(cursor() > before.addSecs(3), pictureDeadlineMs);
        QTRY_VERIFY_WITH_TIMEOUT(showsNear(victim, cursor(), maxApartMs), pictureDeadlineMs);
        QVERIFY(childOf(tileOf(victim)) != child);
    }

private:
    static QDateTime cursor() { return timeline()->currentValue(); }

    API::CameraPtr camera(int index) const
    {
        const API::ServerPtr server = API::CloudAPIClient::serverList().first();
        return server->cameras().value(world.at(index).camera);
    }

    VideoWidget *tileOf(int index) const { return gridOf(mainWindow())->player(camera(index)); }

    /// The archive's moment that the painted tile shows.
    static std::optional<QDateTime> shownBy(VideoWidget *tile)
    {
        const std::optional<Strip> strip = stripOf(tile);
        if (!strip)
            return std::nullopt;
        // The strip knows the moment within its minute: of those the one next to the tile's clock.
        const qint64 clock = tile->playbackTime().toMSecsSinceEpoch();
        const qint64 ahead = (strip->milliseconds - clock) % minuteMs;
        return QDateTime::fromMSecsSinceEpoch(clock + (ahead + minuteMs + minuteMs / 2) % minuteMs -
                                              minuteMs / 2);
    }

    bool showsNear(int index, const QDateTime &moment, qint64 withinMs) const
    {
        const std::optional<Strip> strip = stripOf(tileOf(index));
        const std::optional<QDateTime> shown = shownBy(tileOf(index));
        return strip && shown && strip->camera == world.at(index).number &&
               std::abs(moment.msecsTo(*shown)) <= withinMs;
    }

    static void click(const QDateTime &moment)
    {
        QTest::mouseClick(timeline(), Qt::LeftButton, Qt::NoModifier, placeOf(moment));
    }
};

END_TO_END_MAIN(ArchiveTest)
#include "ArchiveTest.moc"
