// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include <cmath>
#include <optional>

#include "API/Camera.h"
#include "API/CloudAPIClient.h"
#include "API/Layout.h"
#include "API/Server.h"
#include "GUI/ArchiveControlPanel.h"
#include "GUI/LayoutWidget.h"
#include "GUI/MainWindow.h"
#include "GUI/Player/VideoWidget.h"
#include "GUI/Timeline.h"
#include "demo/client/DemoService.h"
#include "tests/e2e/EndToEnd.h"
#include "tests/e2e/Wall.h"

using GUI::Player::VideoWidget;

namespace {

constexpr int readingIntervalMs = 250;
constexpr int minuteMs = 60'000;
/// All tiles of the grid at 1x.
constexpr qint64 maxApartMs = 3000;
constexpr qint64 maxFromCursorMs = 1000;
constexpr qint64 maxStepBackMs = 2000;
constexpr double wantedShare = 0.99;
constexpr int tightestZoom = 100;

QTime time(const char *text)
{
    return QTime::fromString(QLatin1String(text), "h:mm:ss"_s);
}

/// A minute if the large sizes are asked for.
int readingsWanted()
{
    return (qEnvironmentVariableIsSet("ZORVANE_SOAK") ? minuteMs : minuteMs / 4) /
           readingIntervalMs;
}

struct Span {
    const char *start;
    const char *end;
};

} // namespace

/// Four cameras with different gaps, played from one archive.
class ArchiveTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        DemoService::Options options;
        options.plain = true;
        options.servers = 1;
        options.cameras = 5;
        options.lanServers = 0;
        QVERIFY2(service.start(options), qPrintable(service.errorString()));
        useService(service);
        world = service.cameras();
        QCOMPARE(world.size(), 5);

        day = QDate::currentDate().addDays(-1);
        setRecords(0, {{"12:00:00", "12:20:00"}});
        setRecords(1, {{"12:00:00", "12:00:30"}, {"12:00:42", "12:20:00"}});
        setRecords(2, {{"12:00:10", "12:20:00"}});
        setRecords(3, {{"12:00:00", "12:20:00"}, {"12:30:00", "12:40:00"}});
        setRecords(4, {{"12:00:00", "12:40:00"}});

        QVERIFY(enter(service));
        for (const DemoCamera &camera : qAsConst(world))
            QTRY_VERIFY_WITH_TIMEOUT(card(camera.server, camera.camera), pollDeadlineMs);
        mainWindow()->resize(1500, 900);
    }

    void cleanupTestCase()
    {
        leave();
        service.stop();
    }

    void recordsOfTheDayComeUp()
    {
        const auto layout = API::LayoutPtr::create();
        layout->resize(2, 3);
        for (int index = 0; index < 4; ++index) {
            QVERIFY(camera(index));
            layout->setCamera(camera(index), index / 2, index % 2, 1, 1);
        }
        QVERIFY(mainWindow()->openLayout(layout));
        press(mainWindow(), "showRecordsButton");
        QVERIFY(timeline()->isVisible());
        press(mainWindow(), "prevDayButton");
        QCOMPARE(timeline()->startValue().date(), day);
        const auto haveRecords = [&] {
            for (int index = 0; index < 4; ++index) {
                if (!tileOf(index)->camera()->hasRecords(day))
                    return false;
            }
            return true;
        };
        QTRY_VERIFY_WITH_TIMEOUT(haveRecords(), replyDeadlineMs);
        // The middle of the strip is noon.
        timeline()->zoom(tightestZoom);
        QVERIFY(timeline()->startValue() < at("11:58:30") &&
                timeline()->endValue() > at("12:01:00"));
    }

    void aClickPlaysAllCameras()
    {
        click(at("12:00:20"));
        for (int index = 0; index < 4; ++index)
            QTRY_VERIFY_WITH_TIMEOUT(showsNear(index, cursor(), 2 * maxApartMs), pictureDeadlineMs);
        QVERIFY(cursor() >= at("12:00:18") && cursor() < at("12:20:00"));
    }

    void tilesStayTogether_data()
    {
        rows<int>({"exponent"}, {
                                    {"1x", 0},
                                    {"8x", 3},
                                    {"32x", 5},
                                });
    }

    void tilesStayTogether()
    {
        const auto [exponent] = row<int>();
        const int speed = 1 << exponent;
        setSpeed(0);
        click(at("12:01:00"));
        setSpeed(exponent);
        for (int index = 0; index < 4; ++index)
            QTRY_VERIFY_WITH_TIMEOUT(showsNear(index, cursor(), speed * maxApartMs),
                                     pictureDeadlineMs);

        int readings = 0;
        int together = 0;
        int atCursor = 0;
        const QDateTime started = cursor();
        QDateTime last = started;
        for (int n = 0; n < readingsWanted() && last < at("12:19:00"); ++n) {
            QTest::qWait(readingIntervalMs);
            QDateTime earliest;
            QDateTime latest;
            for (int index = 0; index < 4; ++index) {
                // At 32x a minute's strip can't tell where a tile is: its clock does, from the
                // positions of the stream.
                const std::optional<QDateTime> shown =
                    exponent > 3 ? tileOf(index)->playbackTime() : shownBy(tileOf(index));
                if (!shown)
                    continue;
                earliest = earliest.isValid() ? std::min(earliest, *shown) : *shown;
                latest = latest.isValid() ? std::max(latest, *shown) : *shown;
            }
            ++readings;
            together += earliest.isValid() && earliest.msecsTo(latest) <= speed * maxApartMs;
            atCursor += earliest.isValid() &&
                        std::abs(earliest.msecsTo(cursor())) <= speed * maxFromCursorMs;
            // New records of the day restart the tiles at the cursor.
            QVERIFY(cursor().msecsTo(last) <= speed * maxStepBackMs);
            last = cursor();
        }
        qInfo("%d readings, %d together, %d at the cursor, %lld s of archive", readings, together,
              atCursor, static_cast<long long>(started.secsTo(last)));
        QVERIFY(readings >= 20);
        QVERIFY2(together >= std::floor(wantedShare * readings), "tiles drift apart");
        QVERIFY2(atCursor >= std::floor(wantedShare * readings),
                 "the cursor is not at the slowest");
        QVERIFY(last > started);
    }

    void aClickIntoAGapJumps()
    {
        setSpeed(0);
        click(at("11:58:40"));
        QTRY_VERIFY_WITH_TIMEOUT(cursor() >= at("12:00:00"), pictureDeadlineMs);
        QTRY_VERIFY_WITH_TIMEOUT(showsNear(0, cursor(), maxApartMs), pictureDeadlineMs);
        QVERIFY(cursor() < at("12:05:00"));
        // Its record begins ten seconds later.
        QTRY_VERIFY_WITH_TIMEOUT(showsNear(2, cursor(), maxApartMs), pictureDeadlineMs);
        QVERIFY(cursor() >= at("12:00:09"));
    }

    void aTileRestsInItsGapAndComesBack()
    {
        click(at("12:00:22"));
        QTRY_VERIFY_WITH_TIMEOUT(showsNear(1, cursor(), maxApartMs), pictureDeadlineMs);
        // A tile that ran out ahead of the cursor plays its end again until the cursor is there
        // too.
        const auto rests = [&] { return cursor() >= at("12:00:33") && !tileOf(1)->isPlaying(); };
        QTRY_VERIFY_WITH_TIMEOUT(rests(), pictureDeadlineMs);
        QVERIFY(cursor() < at("12:00:42"));
        QVERIFY(tileOf(0)->isPlaying());
        QTRY_VERIFY_WITH_TIMEOUT(tileOf(1)->isPlaying() && showsNear(1, cursor(), maxApartMs),
                                 pictureDeadlineMs);
        QVERIFY(cursor() >= at("12:00:41"));
    }

    void anAddedCameraJoins()
    {
        mainWindow()->addToLayout(camera(4));
        QTRY_VERIFY_WITH_TIMEOUT(tileOf(4) && showsNear(4, cursor(), maxApartMs),
                                 pictureDeadlineMs);
        QVERIFY(showsNear(0, cursor(), maxApartMs));
    }

    void oneClickGoesBackToLive()
    {
        press(mainWindow(), "goLiveButton");
        QVERIFY(!timeline()->isVisible());
        for (int index = 0; index < 5; ++index) {
            const auto isLive = [&] {
                const std::optional<Strip> strip = stripOf(tileOf(index));
                const qint64 now = QDateTime::currentMSecsSinceEpoch();
                return strip && strip->camera == world.at(index).number &&
                       StripReader::ageMs(*strip, now) < 5000;
            };
            QTRY_VERIFY_WITH_TIMEOUT(isLive(), pictureDeadlineMs);
        }
    }

private:
    void setRecords(int index, const QList<Span> &spans)
    {
        QVector<QPair<qint64, qint64>> records;
        for (const Span &span : spans)
            records.append({at(span.start).toMSecsSinceEpoch(), at(span.end).toMSecsSinceEpoch()});
        QVERIFY2(service.setArchive(world.at(index), records), qPrintable(service.errorString()));
    }

    QDateTime at(const char *text) const { return QDateTime(day, time(text)); }
    GUI::Timeline *timeline() const { return mainWindow()->findChild<GUI::Timeline *>(); }
    QDateTime cursor() const { return timeline()->currentValue(); }

    API::CameraPtr camera(int index) const
    {
        const API::ServerPtr server = API::CloudAPIClient::serverList().first();
        return server->cameras().value(world.at(index).camera);
    }

    VideoWidget *tileOf(int index) const { return gridOf(mainWindow())->player(camera(index)); }

    /// The archive's moment that the painted tile shows.

    std::optional<QDateTime> shownBy(VideoWidget *tile) const
    {
        const std::optional<Strip> strip = tile ? stripOf(tile) : std::nullopt;
        if (!strip)
            return std::nullopt;
        // The strip knows the moment within its minute: of those the one next to the tile's clock.
        const qint64 clock = tile->playbackTime().toMSecsSinceEpoch();
        qint64 off = (strip->milliseconds - clock) % minuteMs;
        if (off > minuteMs / 2)
            off -= minuteMs;
        else if (off < -minuteMs / 2)
            off += minuteMs;
        return QDateTime::fromMSecsSinceEpoch(clock + off);
    }

    bool showsNear(int index, const QDateTime &moment, qint64 withinMs) const
    {
        VideoWidget *tile = tileOf(index);
        const std::optional<Strip> strip = tile ? stripOf(tile) : std::nullopt;
        const std::optional<QDateTime> shown = shownBy(tile);
        return strip && shown && strip->camera == world.at(index).number &&
               std::abs(moment.msecsTo(*shown)) <= withinMs;
    }

    /// Clicks the strip, zoomed in as far as it goes, at `moment`.

    void click(const QDateTime &moment)
    {
        GUI::Timeline *strip = timeline();
        const double share = double(strip->startValue().msecsTo(moment)) /
                             strip->startValue().msecsTo(strip->endValue());
        const int x = 15 + static_cast<int>(share * (strip->width() - 30));
        QTest::mouseClick(strip, Qt::LeftButton, Qt::NoModifier, QPoint(x, 30));
    }

    void setSpeed(int exponent)
    {
        mainWindow()->findChild<QSlider *>("speedSlider"_s)->setValue(exponent);
    }

    DemoService service;
    QVector<DemoCamera> world;
    QDate day;
};

int main(int argc, char **argv)
{
    return runEndToEnd(argc, argv, [] { return std::make_unique<ArchiveTest>(); });
}

#include "ArchiveTest.moc"
