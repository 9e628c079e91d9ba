// SPDX-License-Identifier: MIT
// The archive of all tiles of a window: what starts when, and how the tiles are kept in step.
#include "tests/support/Test.h"

#include "API/Camera.h"
#include "API/Layout.h"
#include "GUI/ArchiveControlPanel.h"
#include "GUI/ControlPanel.h"
#include "GUI/InfoPanel.h"
#include "GUI/LayoutWidget.h"
#include "GUI/MainWindow.h"
#include "GUI/Player/VideoWidget.h"
#include "GUI/Timeline.h"
#include "tests/GUI/ArchiveWorld.h"
#include "tests/GUI/Player/TileFixture.h"
#include "tests/support/ScriptedChild.h"

using namespace ZorvaneClient::GUI;
using GUI::Player::VideoWidget;

namespace {

const QDate day(2026, 3, 3);
constexpr int startDeadlineMs = 20000;
using Records = QList<API::ArchiveRecord>;

QTime at(const QString &text)
{
    return QTime::fromString(text, "h:mm:ss"_s);
}

QDateTime moment(const QString &text)
{
    return QDateTime(day, at(text));
}

Records records(const QStringList &spans)
{
    Records list;
    for (const QString &span : spans) {
        const QStringList ends = span.split('-');
        list.append(record(day, at(ends.value(0)), at(ends.value(1))));
    }
    return list;
}

/// What one start of a player asked for: camera and moment; live without a moment.
struct Started {
    int camera = 0;
    QDateTime start;
    int speed = 0;
};

Started startedBy(const QStringList &arguments)
{
    const QUrlQuery query(arguments.value(0).section('?', 1));
    const auto number = [&query](const char *key) {
        return query.queryItemValue(QLatin1String(key)).toLongLong();
    };
    Started started;
    started.camera = static_cast<int>(number("camera"));
    if (query.hasQueryItem("startTime"_s))
        started.start = QDateTime::fromMSecsSinceEpoch(number("startTime") * 1000);
    started.speed = static_cast<int>(number("speed"));
    return started;
}

} // namespace

class ArchivePlaybackTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(world.start()); }

    void init()
    {
        world.reset();
        clock.reset(new FakeClock(moment("23:00:00"_s)));
        child.reset(new ScriptedChild({"wait never"_s}));
        window.reset(new MainWindow);
        startsSeen = 0;
    }

    void cleanup()
    {
        window.reset();
        child.reset();
        clock.reset();
        shown.clear();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    }

    void aClickPlaysTheRecordsThatHoldIt()
    {
        open({camera(1, {"10:00:00-11:00:00"}), camera(2, {"10:30:00-11:30:00"})});
        window->showArchivePanels();
        window->onPlayArchive(moment("10:45:10"_s));

        QList<Started> started = starts(2);
        std::sort(started.begin(), started.end(),
                  [](const Started &a, const Started &b) { return a.camera < b.camera; });
        for (int index = 0; index < started.size(); ++index) {
            QCOMPARE(started.at(index).camera, index + 1);
            QCOMPARE(started.at(index).start, moment("10:45:10"_s));
            QCOMPARE(started.at(index).speed, 1);
            QCOMPARE(tile(index)->playbackTime(), moment("10:45:10"_s));
        }
        QVERIFY(timeline()->sliderVisible());
        QCOMPARE(panel()->findChild<QLabel *>("timeLabel"_s)->text(), "10:45:10"_s);
        QCOMPARE(panel()->findChild<QLabel *>("dateLabel"_s)->text(), "03/03"_s);
    }

    void clicksOutsideRecordsJump_data()
    {
        rows<QString, QString>({"click", "expected"},
                               {
                                   {"before all", "9:00:00", "10:00:00"},
                                   {"in a gap", "10:15:00", "10:20:00"},
                                   {"on a record's end", "10:10:00", "10:20:00"},
                                   {"on a record's start", "10:20:00", "10:20:00"},
                               });
    }

    void clicksOutsideRecordsJump()
    {
        const auto [click, expected] = row<QString, QString>();
        open({camera(1, {"10:00:00-10:10:00", "10:20:00-10:30:00"})});
        window->onPlayArchive(moment(click));
        QCOMPARE(timeline()->currentValue(), moment(expected));
        const QList<Started> started = starts(1);
        QCOMPARE(started.first().start, moment(expected));
    }

    void pastTheLastRecordTheCursorStays()
    {
        open({camera(1, {"10:00:00-10:10:00"})});
        window->onPlayArchive(moment("10:10:01"_s));
        window->playArchive();
        QCOMPARE(timeline()->currentValue(), moment("10:10:01"_s));
        QVERIFY(!tile(0)->isPlaying());
        QVERIFY(showsText(*tile(0), VideoWidget::tr("No records")));
    }

    void aSpanStartsWhenTheCursorReachesIt()
    {
        open({camera(1, {"10:00:00-12:00:00"}), camera(2, {"11:00:00-12:00:00"})});
        window->onPlayArchive(moment("10:59:00"_s));
        QCOMPARE(starts(1).first().camera, 1);
        QVERIFY(!tile(1)->isPlaying());

        tile(0)->setTime(moment("11:00:00"_s));
        window->updateTimeline(0);
        window->playArchive();
        const Started second = starts(1).first();
        QCOMPARE(second.camera, 2);
        QCOMPARE(second.start, moment("11:00:00"_s));
    }

    void aTileThatRanOutComesBackWithItsNextRecord()
    {
        open({camera(1, {"10:00:00-10:10:00", "10:30:00-10:40:00"}),
              camera(2, {"10:00:00-10:20:00"})});
        window->onPlayArchive(moment("10:05:00"_s));
        starts(2);
        tile(0)->stop();
        tile(1)->setTime(moment("10:12:00"_s));
        window->updateTimeline(0);
        window->playArchive();
        QVERIFY2(!tile(0)->isPlaying(), "the other camera still plays");

        tile(1)->stop();
        window->playArchive();
        QCOMPARE(timeline()->currentValue(), moment("10:30:00"_s));
        const Started again = starts(1).first();
        QCOMPARE(again.camera, 1);
        QCOMPARE(again.start, moment("10:30:00"_s));
    }

    void tilesAheadAreHeldAndReleased()
    {
        open({camera(1, {"10:00:00-11:00:00"}), camera(2, {"10:00:00-11:00:00"})});
        const QDateTime cursor = moment("10:05:00"_s);
        window->onPlayArchive(cursor);
        starts(2);
        const auto heldAt = [&](qint64 aheadMs) {
            tile(1)->setTime(cursor.addMSecs(aheadMs));
            window->playArchive();
            return tile(1)->isPaused();
        };
        QVERIFY(!heldAt(3000));
        QVERIFY(heldAt(3001));
        QVERIFY(heldAt(1500));
        QVERIFY(!heldAt(1499));
        QVERIFY(!heldAt(2999));
        QVERIFY(!tile(0)->isPaused());
        QTRY_VERIFY(child->commands().contains("pause"_s));
    }

    void tilesThatAreAllAheadGoOn()
    {
        open({camera(1, {"10:00:00-11:00:00"}), camera(2, {"10:00:00-11:00:00"})});
        const QDateTime cursor = moment("10:05:00"_s);
        window->onPlayArchive(cursor);
        starts(2);
        tile(0)->setTime(cursor.addSecs(5));
        tile(1)->setTime(cursor.addSecs(60));
        window->playArchive();
        QVERIFY(!tile(0)->isPaused());
        QVERIFY(!tile(1)->isPaused());
    }

    void cursorFollowsTheSlowestTile()
    {
        open({camera(1, {"10:00:00-11:00:00"}), camera(2, {"10:00:00-11:00:00"})});
        window->onPlayArchive(moment("10:05:00"_s));
        starts(2);
        tile(0)->setTime(moment("10:06:02"_s));
        tile(1)->setTime(moment("10:06:00"_s));
        emit tile(0)->msecsAdded(1000);
        QCOMPARE(timeline()->currentValue(), moment("10:05:00"_s));
        emit tile(1)->msecsAdded(1000);
        QCOMPARE(timeline()->currentValue(), moment("10:06:00"_s));
        QCOMPARE(panel()->findChild<QLabel *>("timeLabel"_s)->text(), "10:06:00"_s);
    }

    void cursorMovesOverToTheNextDay()
    {
        open({camera(1, {"20:00:00-22:00:00"})});
        window->onPlayArchive(moment("20:05:00"_s));
        starts(1);
        clock->advance(2 * 60 * 60);
        tile(0)->setTime(QDateTime(day.addDays(1), QTime(0, 0, 5)));
        window->updateTimeline(0);
        QCOMPARE(timeline()->startValue().date(), day.addDays(1));
        QCOMPARE(timeline()->currentValue(), QDateTime(day.addDays(1), QTime(0, 0, 5)));
        QTRY_VERIFY(world.requestedDays(1).contains(day.addDays(1)));
    }

    void speedRestartsAtTheCursor()
    {
        open({camera(1, {"10:00:00-11:00:00"})});
        auto *slider = panel()->findChild<QSlider *>("speedSlider"_s);
        slider->setValue(2);
        QVERIFY2(!timeline()->sliderVisible(), "live play has no speed");

        window->onPlayArchive(moment("10:05:00"_s));
        QCOMPARE(starts(1).first().speed, 4);
        tile(0)->setTime(moment("10:07:00"_s));
        window->updateTimeline(0);
        slider->setValue(5);
        const Started faster = starts(1).first();
        QCOMPARE(faster.speed, 32);
        QCOMPARE(faster.start, moment("10:07:00"_s));
    }

    void pauseFreezesTheTick()
    {
        open({camera(1, {"10:00:00-11:00:00"}), camera(2, {"10:30:00-11:00:00"})});
        window->onPlayArchive(moment("10:05:00"_s));
        starts(1);
        window->pause();
        tile(0)->stop();
        window->playArchive();
        QVERIFY(!tile(0)->isPlaying());
        window->unpause();
        window->playArchive();
        QVERIFY(tile(0)->isPlaying());
    }

    void aCameraWithoutTheRightSaysSo()
    {
        const API::CameraPtr closed = world.cloudCamera(9, false);
        open({camera(1, {"10:00:00-11:00:00"}), closed});
        window->onPlayArchive(moment("10:05:00"_s));
        QVERIFY(showsText(*tile(1), MainWindow::tr("Archive is not shared")));
    }

    void aCameraAddedWhileTheArchivePlaysJoins()
    {
        const API::CameraPtr late = camera(2, {"10:00:00-11:00:00"});
        open({camera(1, {"10:00:00-11:00:00"})}, 1);
        window->onPlayArchive(moment("10:05:00"_s));
        starts(1);
        window->addToLayout(late);
        QVERIFY(timeline()->hasCamera(late->globalId()));
        window->playArchive();
        const Started joined = starts(1).first();
        QCOMPARE(joined.camera, 2);
        QCOMPARE(joined.start, moment("10:05:00"_s));
    }

    void liveEndsTheArchive()
    {
        open({camera(1, {"10:00:00-11:00:00"})});
        window->showArchivePanels();
        panel()->findChild<QSlider *>("speedSlider"_s)->setValue(3);
        window->onPlayArchive(moment("10:05:00"_s));
        starts(1);

        window->playLive();
        QVERIFY(!starts(1).first().start.isValid());
        QVERIFY(!timeline()->sliderVisible());
        QVERIFY(timeline()->isHidden());
        QVERIFY(window->findChild<ArchiveControlPanel *>()->isHidden());
        QCOMPARE(panel()->speed(), 1);
        QCOMPARE(timeline()->currentValue(), clock->now());

        tile(0)->stop();
        QTimerEvent leftover(0);
        QCoreApplication::sendEvent(window.data(), &leftover);
        QVERIFY2(!tile(0)->isPlaying(), "timers of the archive do nothing live");
    }

    void closedCamerasLeaveStripAndCalendar()
    {
        open({camera(1, {"10:00:00-11:00:00"}), camera(2, {"10:00:00-11:00:00"})});
        QCOMPARE(timeline()->activeCamera(), shown.at(0));
        grid()->removeCamera(shown.at(0));
        QVERIFY(!timeline()->hasCamera(shown.at(0)->globalId()));
        QCOMPARE(timeline()->activeCamera(), shown.at(1));
        // Nobody is here to be asked about the edit.
        window->findChild<InfoPanel *>()->enterViewMode();
        QVERIFY(window->openLayout(API::LayoutPtr::create()));
        QCOMPARE(timeline()->cameraCount(), 0);
    }

    void anEqualLayoutKeepsItsDaysInTheCalendar()
    {
        open({camera(1, {"10:00:00-11:00:00"})});
        const auto daysRequests = [this] {
            return world.requestedDays(1).count(day.addMonths(-6));
        };
        QTRY_COMPARE(daysRequests(), 1);
        QVERIFY(window->openLayout(API::LayoutPtr::create(*grid()->workingLayout())));
        QTRY_COMPARE(daysRequests(), 2);
    }

    void anExportEndsWithItsTile_data()
    {
        rows<int, bool, QString>({"cameras", "byLayout", "page"},
                                 {
                                     {"closed, others left", 2, false, "controlPage"},
                                     {"closed, none left", 1, false, "emptyPage"},
                                     {"another layout", 2, true, "emptyPage"},
                                 });
    }

    void anExportEndsWithItsTile()
    {
        const auto [cameras, byLayout, page] = row<int, bool, QString>();
        QList<API::CameraPtr> all;
        for (int id = 1; id <= cameras; ++id)
            all.append(camera(id, {"10:00:00-11:00:00"}));
        open(all, 1);
        const qint64 process = startExport();
        QVERIFY(process != 0);
        QVERIFY(ScriptedChild::isAlive(process));
        if (byLayout)
            QVERIFY(window->openLayout(API::LayoutPtr::create()));
        else
            grid()->removeCamera(shown.first());
        QCOMPARE(panel()->currentWidget()->objectName(), page);
        QCOMPARE(pageOf("exportControl"), "exportButtonPage"_s);
        QVERIFY(window->findChild<QStackedWidget *>("messageWidget"_s)->isHidden());
        QTRY_VERIFY(!ScriptedChild::isAlive(process));
    }

    void cancelEndsTheExportThatRuns()
    {
        open({camera(1, {"10:00:00-11:00:00"}), camera(2, {"10:00:00-11:00:00"})});
        const qint64 process = startExport();
        QVERIFY(process != 0);
        window->activateCamera(shown.at(1));
        window->cancelExport();
        QVERIFY(!ScriptedChild::isAlive(process));
        QCOMPARE(panel()->currentWidget()->objectName(), "controlPage"_s);
    }

private:
    /// Opens `cameras` side by side, with free cells behind them, and waits until the strip has
    /// their records.

    void open(const QList<API::CameraPtr> &cameras, int freeCells = 0)
    {
        shown = cameras;
        const auto layout = API::LayoutPtr::create();
        layout->resize(1, cameras.size() + freeCells);
        for (int column = 0; column < cameras.size(); ++column)
            layout->setCamera(cameras.at(column), 0, column, 1, 1);
        QSignalSpy updated(timeline(), &Timeline::recordsUpdated);
        QVERIFY(window->openLayout(layout));
        QCOMPARE(timeline()->cameraCount(), cameras.size());
        const auto shares = [](const API::CameraPtr &each) { return each->isArchiveShared(); };
        const auto sharing = std::count_if(cameras.begin(), cameras.end(), shares);
        QTRY_VERIFY(updated.size() >= sharing);
        starts(static_cast<int>(sharing));
    }

    API::CameraPtr camera(int id, const QStringList &spans)
    {
        return world.loadedCamera(id, day, records(spans));
    }

    VideoWidget *tile(int index) const { return grid()->player(shown.value(index)); }
    LayoutWidget *grid() const { return window->findChild<LayoutWidget *>(); }
    Timeline *timeline() const { return window->findChild<Timeline *>(); }
    ControlPanel *panel() const { return window->findChild<ControlPanel *>(); }
    /// Exports from the first camera; returns the process that does.

    qint64 startExport()
    {
        shown.first()->setExportEnabled(true);
        window->onPlayArchive(moment("10:05:00"_s));
        starts(static_cast<int>(shown.size()));
        window->showArchivePanels();
        window->setExportMode();
        child->setScript({"print export-start\\n"_s, "wait never"_s});
        window->exportArchive();
        const auto exports = [this] { return pageOf("exportControl") == "exportLabelPage"_s; };
        return QTest::qWaitFor(exports, startDeadlineMs) ? child->lastProcessId() : 0;
    }

    QString pageOf(const char *stack) const
    {
        const auto *pages = window->findChild<QStackedWidget *>(QLatin1String(stack));
        return pages->currentWidget()->objectName();
    }
    /// Waits for the starts since the last call, of which there must be `count`.

    QList<Started> starts(int count)
    {
        const auto haveStarted = [&] { return child->starts().size() >= startsSeen + count; };
        if (!QTest::qWaitFor(haveStarted, startDeadlineMs))
            qWarning("a start is missing");
        QList<Started> result;
        const QList<QStringList> all = child->starts();
        for (; startsSeen < all.size(); ++startsSeen)
            result.append(startedBy(all.at(startsSeen)));
        if (result.size() != count) {
            QTest::qFail("other starts than expected", __FILE__, __LINE__);
            result = QVector<Started>(count).toList();
        }
        return result;
    }

    ArchiveWorld world;
    QScopedPointer<FakeClock> clock;
    QScopedPointer<ScriptedChild> child;
    QScopedPointer<MainWindow> window;
    QList<API::CameraPtr> shown;
    int startsSeen = 0;
};

QTEST_MAIN(ArchivePlaybackTest)
#include "ArchivePlaybackTest.moc"
