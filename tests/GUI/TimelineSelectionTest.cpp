// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "API/Camera.h"
#include "tests/GUI/ArchiveWorld.h"
#include "tests/GUI/TimelineStrip.h"

using GUI::Timeline;
using Tests::ArchiveWorld;
using Tests::at;
using Tests::record;
using Tests::stripDay;
using Tests::TimelineStrip;

namespace {

/// A drag as "press step step ...", in pixels.
void drag(TimelineStrip &strip, const QString &xs)
{
    QStringList steps = xs.split(' ');
    strip.state.startSelectionDrag(steps.takeFirst().toInt());
    for (const QString &x : qAsConst(steps))
        strip.state.dragSelection(x.toInt());
}

/// "10:00:00-10:05:00"; an end on another day has that in front.
QString selectionOf(const QDateTime &start, const QDateTime &end)
{
    const auto text = [](const QDateTime &time) {
        const QString clock = time.toString("h:mm:ss");
        const qint64 days = stripDay.daysTo(time.date());
        return days == 0 ? clock : "%1 %2"_s.arg(days).arg(clock);
    };
    return text(start) + '-' + text(end);
}

QString selectionOf(const TimelineStrip &strip)
{
    return selectionOf(strip.state.selectionStart, strip.state.selectionEnd);
}

QList<API::ArchiveRecord> recordsOf(const QString &text)
{
    QList<API::ArchiveRecord> records;
    const QStringList spans = text.split(' ');
    for (const QString &span : spans) {
        const QString end = span.section('-', 1);
        if (!end.isEmpty())
            records.append({at(span.section('-', 0, 0)), at(end)});
    }
    return records;
}

} // namespace

// Windows of 1000 s have one second in a pixel, those of 20000 s twenty; x 15 is their start.

/// The fragment to export: its limits, its handles, and where it begins.
class TimelineSelectionTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(world.start()); }

    void init() { world.reset(); }

    void drags_data()
    {
        QTest::addColumn<QString>("window");
        QTest::addColumn<QString>("selection");
        QTest::addColumn<QString>("xs");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char *name, const char *window, const char *selection,
                            const char *xs, const char *expected) {
            QTest::newRow(name) << window << selection << xs << expected;
        };
        const char *const near = "10:00:00-10:16:40";
        const char *const wide = "6:00:00-11:33:20";
        const char *const late = "23:43:19-23:59:59";
        const char *const early = "0:00:00-0:16:40";
        row("start", near, "10:05:00-10:10:00", "315 256", "10:04:01-10:10:00");
        row("end", near, "10:05:00-10:10:00", "615 728", "10:05:00-10:11:53");
        row("body", near, "10:05:00-10:10:00", "400 410", "10:05:10-10:10:10");
        row("start to 60 s", near, "10:05:00-10:10:00", "315 555", "10:09:00-10:10:00");
        row("start to 59 s", near, "10:05:00-10:10:00", "315 556", "10:09:01-10:14:01");
        row("start to 30 s", near, "10:05:00-10:10:00", "315 585", "10:09:30-10:14:30");
        row("end to 60 s", near, "10:05:00-10:10:00", "615 375", "10:05:00-10:06:00");
        row("end to 30 s", near, "10:05:00-10:10:00", "615 345", "10:00:30-10:05:30");
        row("start to 7200 s", wide, "8:00:00-9:00:00", "375 195", "7:00:00-9:00:00");
        row("start to 7220 s", wide, "8:00:00-9:00:00", "375 194", "6:59:40-7:59:40");
        row("end to 7200 s", wide, "8:00:00-9:00:00", "555 735", "8:00:00-10:00:00");
        row("end to 7220 s", wide, "8:00:00-9:00:00", "555 736", "9:00:20-10:00:20");

        row("snaps over 6 pixels", near, "10:05:00-10:09:30", "585 609", "10:05:00-10:10:00");
        row("not over 7", near, "10:05:00-10:09:30", "585 608", "10:05:00-10:09:53");
        row("snaps from beyond", near, "10:05:00-10:09:30", "315 321", "10:05:00-10:09:30");
        row("not to below 60 s", near, "10:04:04-10:10:00", "615 320", "10:04:04-10:05:05");
        row("not to a time 24:00", late, "23:50:00-23:55:00", "716 1012", "23:50:00-23:59:56");

        row("body past the day's end", late, "23:50:00-23:55:00", "500 2000", "23:58:35-23:59:59");
        row("down to 60 s", late, "23:50:00-23:55:00", "430 2000", "23:58:59-23:59:59");
        row("start past the day's end", late, "23:50:00-23:55:00", "416 2000", "23:58:59-23:59:59");
        row("and back a little", late, "23:50:00-23:55:00", "416 2000 1014", "23:58:58-23:59:58");
        row("body past the day's begin", early, "0:05:00-0:06:00", "345 -100", "0:00:00-0:01:00");
        row("end past the day's end", late, "23:50:00-23:55:00", "716 2000", "23:50:00-23:59:59");
    }

    void drags()
    {
        QFETCH(QString, window);
        QFETCH(QString, selection);
        QFETCH(QString, xs);
        QFETCH(QString, expected);
        TimelineStrip strip;
        strip.setWindow(window.section('-', 0, 0), window.section('-', 1));
        strip.setSelection(selection.section('-', 0, 0), selection.section('-', 1));
        drag(strip, xs);
        QCOMPARE(selectionOf(strip), expected);
    }

    void handlesTurnIntoBodiesAndBack()
    {
        TimelineStrip strip;
        strip.setWindow("10:00:00", "10:16:40");
        strip.setSelection("10:05:00", "10:10:00");
        drag(strip, "315 556");
        QCOMPARE(selectionOf(strip), "10:09:01-10:14:01"_s);
        QVERIFY(strip.state.draggingStart && strip.state.draggingBody);
        strip.state.dragSelection(500);
        QCOMPARE(selectionOf(strip), "10:08:05-10:14:01"_s);
        QVERIFY(strip.state.draggingStart && !strip.state.draggingBody);
        strip.state.stopSelectionDrag();
        strip.state.dragSelection(700);
        QCOMPARE(selectionOf(strip), "10:08:05-10:14:01"_s);

        drag(strip, "856 505");
        QCOMPARE(selectionOf(strip), "10:02:14-10:08:10"_s);
        QVERIFY(strip.state.draggingEnd && strip.state.draggingBody);
        strip.state.dragSelection(705);
        QCOMPARE(selectionOf(strip), "10:02:14-10:11:30"_s);
        QVERIFY(strip.state.draggingEnd && !strip.state.draggingBody);
    }

    void standsStillWhileExporting()
    {
        TimelineStrip strip;
        strip.setWindow("10:00:00", "10:16:40");
        strip.setSelection("10:05:00", "10:10:00");
        strip.state.selectionEditable = false;
        drag(strip, "400 500 600");
        QCOMPARE(selectionOf(strip), "10:05:00-10:10:00"_s);
        strip.state.selectionEditable = true;
        strip.state.selectionMode = false;
        strip.state.dragSelection(600);
        QCOMPARE(selectionOf(strip), "10:05:00-10:10:00"_s);
    }

    void pressTakesHold_data()
    {
        QTest::addColumn<QString>("selection");
        QTest::addColumn<int>("x");
        QTest::addColumn<QString>("held");
        const auto row = [](const char *selection, int x, const char *held) {
            QTest::addRow("%s, x %d", selection, x) << selection << x << held;
        };
        const char *const middle = "10:05:00-10:10:00"; // x 315 to 615
        row(middle, 303, "");
        row(middle, 304, "start");
        row(middle, 326, "start");
        row(middle, 327, "body");
        row(middle, 603, "body");
        row(middle, 604, "end");
        row(middle, 626, "end");
        row(middle, 627, "");
        // Where both are near, the start is.
        row("10:05:00-10:05:10", 320, "start");
        row("10:00:00-10:16:40", 9, "");
        row("10:00:00-10:16:40", 10, "start");
        row("10:00:00-10:16:40", 1020, "end");
        row("10:00:00-10:16:40", 1021, "");
    }

    void pressTakesHold()
    {
        QFETCH(QString, selection);
        QFETCH(int, x);
        QFETCH(QString, held);
        TimelineStrip strip;
        strip.setWindow("10:00:00", "10:16:40");
        strip.setSelection(selection.section('-', 0, 0), selection.section('-', 1));
        strip.state.startSelectionDrag(x);
        QCOMPARE(strip.state.draggingStart, held == "start");
        QCOMPARE(strip.state.draggingEnd, held == "end");
        QCOMPARE(strip.state.draggingBody, held == "body");
        QCOMPARE(strip.state.isDraggingSelection(), !held.isEmpty());
    }

    void normalise_data()
    {
        rows<QString, QString, QString>(
            {"start", "end", "expected"},
            {
                {"fits", "10:00:00", "10:01:00", "10:00:00-10:01:00"},
                {"short", "10:00:00", "10:00:59", "10:00:00-10:01:00"},
                {"turned round", "10:00:00", "9:00:00", "10:00:00-10:01:00"},
                {"longest", "10:00:00", "12:00:00", "10:00:00-12:00:00"},
                {"long", "10:00:00", "12:00:01", "10:00:00-12:00:00"},
                {"early", "-1 23:59:00", "0:10:00", "0:00:00-0:10:00"},
                {"early and short", "-1 23:59:00", "0:00:00", "0:00:00-0:01:00"},
                {"late", "23:58:00", "+1 0:10:00", "23:58:00-23:59:59"},
                {"late and short", "23:59:30", "+1 0:00:30", "23:58:59-23:59:59"},
            });
    }

    void normalise()
    {
        const auto [start, end, expected] = row<QString, QString, QString>();
        TimelineStrip strip;
        strip.setSelection(start, end);
        strip.state.normalizeSelection();
        QCOMPARE(selectionOf(strip), expected);
    }

    void snapping_data()
    {
        QTest::addColumn<int>("labelStep");
        QTest::addColumn<QString>("time");
        QTest::addColumn<QString>("expected"); // empty: an invalid time
        const auto row = [](int labelStep, const char *time, const char *expected) {
            QTest::addRow("%d, %s", labelStep, time) << labelStep << time << expected;
        };
        row(60, "10:02:59", "10:00:00");
        row(60, "10:03:00", "10:05:00");
        row(3600, "10:57:59", "10:55:00");
        row(3600, "10:58:00", "11:00:00");
        row(3601, "10:07:59", "10:00:00");
        row(7200, "10:08:00", "10:15:00");
        row(7200, "10:53:00", "11:00:00");
        row(7201, "10:14:59", "10:00:00");
        row(28800, "10:15:00", "10:30:00");
        row(28800, "10:45:00", "11:00:00");
        row(3600, "23:57:59", "23:55:00");
        row(3600, "23:58:00", "");
        row(7200, "23:53:00", "");
        row(28800, "23:45:00", "");
    }

    void snapping()
    {
        QFETCH(int, labelStep);
        QFETCH(QString, time);
        QFETCH(QString, expected);
        TimelineStrip strip;
        strip.state.labelStep = labelStep;
        const QDateTime snapped = strip.state.snapped(at(time));
        QCOMPARE(snapped.isValid(), !expected.isEmpty());
        if (!expected.isEmpty())
            QCOMPARE(snapped, at(expected));
    }

    void fit_data()
    {
        rows<QString, int, QString>({"start", "seconds", "expected"},
                                    {
                                        {"whole minute", "10:00:00", 300, "10:00:00-10:05:00"},
                                        {"cut", "10:00:59", 300, "10:00:00-10:05:00"},
                                        {"day before", "-1 23:58:30", 300, "0:00:00-0:05:00"},
                                        {"end of the day", "23:58:30", 300, "23:54:59-23:59:59"},
                                        {"day after", "+1 12:00:00", 300, "23:54:59-23:59:59"},
                                    });
    }

    void fit()
    {
        const auto [start, seconds, expected] = row<QString, int, QString>();
        TimelineStrip strip;
        strip.state.selectionStart = at(start).addMSecs(700);
        strip.state.fitSelection(seconds);
        QCOMPARE(selectionOf(strip), expected);
        QCOMPARE(strip.state.selectionStart.time().msec(), 0);
    }

    void firstFragment_data()
    {
        QTest::addColumn<QStringList>("cameras");
        QTest::addColumn<QString>("expected"); // empty: none
        const auto row = [](const char *name, const QStringList &cameras, const char *expected) {
            QTest::newRow(name) << cameras << expected;
        };
        // The middle of the view gives 11:57:00 to 12:02:00.
        row("in the middle", {"11:00:00-13:00:00"}, "11:57:00-12:02:00");
        row("begins within", {"12:01:59-13:00:00"}, "11:57:00-12:02:00");
        row("begins at its end", {"12:02:00-13:00:00"}, "12:02:00-12:07:00");
        row("later", {"15:30:40-16:00:00 17:00:00-18:00:00"}, "15:30:00-15:35:00");
        row("later, of the second camera", {"20:00:00-21:00:00", "18:00:00-18:10:00"},
            "18:00:00-18:05:00");
        row("late", {"23:58:10-23:59:00"}, "23:54:59-23:59:59");
        row("later, rather than just before", {"11:56:00-11:56:30 23:00:00-23:10:00"},
            "23:00:00-23:05:00");
        row("earlier", {"8:00:00-8:10:00 9:15:30-9:20:00"}, "9:15:00-9:20:00");
        row("ends where the fragment begins", {"10:00:10-11:57:00"}, "10:00:00-10:05:00");
        row("not past a record that ends there", {"10:00:10-11:57:00 11:00:00-11:30:00"},
            "10:00:00-10:05:00");
        row("earlier, of the second camera", {"8:00:00-8:10:00", "9:00:00-9:10:00"},
            "9:00:00-9:05:00");
        row("near enough", {"11:52:00-11:53:00", "11:56:00-11:56:30"}, "11:52:00-11:57:00");
        row("not near enough", {"11:51:59-11:53:00", "11:56:00-11:56:30"}, "11:56:00-12:01:00");
        row("none", {"", ""}, "");
    }

    void firstFragment()
    {
        QFETCH(QStringList, cameras);
        QFETCH(QString, expected);
        TimelineStrip strip;
        for (int index = 0; index < cameras.size(); ++index) {
            const auto records = recordsOf(cameras.at(index));
            strip.addCamera(world.loadedCamera(index + 1, stripDay, records));
        }
        QCOMPARE(strip.state.defaultSelection(), !expected.isEmpty());
        if (!expected.isEmpty())
            QCOMPARE(selectionOf(strip), expected);
    }

    void fragmentAtTheCursor_data()
    {
        rows<QString, QString>({"cursor", "expected"},
                               {
                                   {"middle", "14:03:20", "14:00:00-14:05:00"},
                                   {"begin of the day", "0:01:00", "0:00:00-0:05:00"},
                                   {"end of the day", "23:59:30", "23:54:59-23:59:59"},
                               });
    }

    void fragmentAtTheCursor()
    {
        const auto [cursor, expected] = row<QString, QString>();
        TimelineStrip strip;
        strip.state.currentValue = at(cursor).addMSecs(500);
        QVERIFY(strip.state.selectionAtCurrentTime());
        QCOMPARE(selectionOf(strip), expected);
    }

    void reveal_data()
    {
        QTest::addColumn<QString>("window");
        QTest::addColumn<QString>("fragment");
        QTest::addColumn<QString>("expected");
        const auto row = [](const char *name, const char *window, const char *fragment,
                            const char *expected) {
            QTest::newRow(name) << window << fragment << expected;
        };
        const char *const all = "0:00:00-23:59:59";
        row("short", all, "14:00:00-14:01:00", "13:47:30-14:17:30");
        row("of 300 s", all, "14:00:00-14:05:00", "13:47:30-14:17:30");
        row("of 600 s", all, "14:00:00-14:10:00", "13:35:00-14:35:00");
        row("of 601 s", all, "14:00:00-14:10:01", "13:44:58-14:25:02");
        row("of two hours", all, "12:00:00-14:00:00", "9:00:00-17:00:00");
        row("near midnight", all, "0:05:00-0:10:00", "0:00:00-0:22:30");
        row("from a close view far before", "1:00:00-1:10:00", "14:00:00-14:05:00",
            "13:47:30-14:17:30");
        row("from a close view far after", "20:00:00-20:10:00", "14:00:00-14:05:00",
            "13:47:30-14:17:30");
        row("at the edge of a close view", "14:00:00-14:20:00", "14:00:00-14:05:00",
            "13:47:30-14:17:30");
        row("in a close view", "13:59:59-14:20:00", "14:00:00-14:05:00", "13:59:59-14:20:00");
    }

    void reveal()
    {
        QFETCH(QString, window);
        QFETCH(QString, fragment);
        QFETCH(QString, expected);
        TimelineStrip strip;
        const QDateTime start = at(window.section('-', 0, 0));
        const QDateTime end = at(window.section('-', 1));
        strip.owner.setStartValue(start);
        strip.owner.setEndValue(end);
        strip.state.startValue = start;
        strip.state.endValue = end;
        // On the way no end leaves what lies between the two windows.
        const QDateTime earliest = qMin(start, at(expected.section('-', 0, 0)));
        const QDateTime latest = qMax(end, at(expected.section('-', 1)));
        bool strays = false;
        QTimer sampling;
        connect(&sampling, &QTimer::timeout, &strip.owner, [&] {
            strays |= strip.owner.startValue() < earliest || latest < strip.owner.endValue();
        });
        sampling.start(0);
        strip.state.reveal(at(fragment.section('-', 0, 0)), at(fragment.section('-', 1)));
        QCOMPARE(selectionOf(strip.owner.startValue(), strip.owner.endValue()), window);
        QTRY_COMPARE(selectionOf(strip.owner.startValue(), strip.owner.endValue()), expected);
        QVERIFY(!strays);
    }

    void closerViewStays()
    {
        TimelineStrip strip;
        strip.owner.setStartValue(at("13:59:59"));
        strip.owner.setEndValue(at("14:20:00"));
        strip.state.startValue = strip.owner.startValue();
        strip.state.endValue = strip.owner.endValue();
        strip.state.reveal(at("14:00:00"), at("14:05:00"));
        QVERIFY(!strip.state.dirty);
        // An animation that began with it would be through with one as long that began after it.
        QVariantAnimation later;
        later.setDuration(500);
        QSignalSpy finished(&later, &QAbstractAnimation::finished);
        later.setStartValue(0);
        later.setEndValue(1);
        later.start();
        QTRY_COMPARE(finished.size(), 1);
        QCOMPARE(strip.owner.startValue(), at("13:59:59"));
        QCOMPARE(strip.owner.endValue(), at("14:20:00"));
    }

    void selectionMode()
    {
        const API::CameraPtr empty = world.loadedCamera(1, stripDay, {});
        const API::CameraPtr camera =
            world.loadedCamera(2, stripDay, recordsOf("10:00:00-11:00:00 14:00:00-15:00:00"));
        Timeline timeline(stripDay);
        timeline.resize(Tests::thousandPixelScale, timeline.height());
        timeline.setCurrentValue(at("14:02:30"));
        timeline.addCamera(empty);
        timeline.addCamera(camera);
        timeline.setActiveCameraId(empty->globalId());
        QVERIFY(!timeline.enterSelectionMode(true, false));
        timeline.setActiveCameraId(camera->globalId());
        QVERIFY(timeline.enterSelectionMode(true, false));
        QCOMPARE(selectionOf(timeline.selectionStart(), timeline.selectionEnd()),
                 "14:00:00-14:05:00"_s);
        QTRY_COMPARE(selectionOf(timeline.startValue(), timeline.endValue()),
                     "13:47:30-14:17:30"_s);

        timeline.leaveSelectionMode();
        timeline.setCurrentValue(at("10:30:00"));
        QVERIFY(timeline.enterSelectionMode(true, true));
        QCOMPARE(timeline.selectionStart(), at("14:00:00"));
        QVERIFY(timeline.enterSelectionMode(false, false));
        QCOMPARE(timeline.selectionStart(), at("14:00:00"));
        // A fragment of another day doesn't stay.
        timeline.changeDate(stripDay.addDays(1));
        timeline.changeDate(stripDay);
        QVERIFY(timeline.enterSelectionMode(true, true));
        QCOMPARE(timeline.selectionStart(), at("14:00:00"));
        timeline.changeDate(stripDay.addDays(1));
        QVERIFY(timeline.enterSelectionMode(true, true));
        QCOMPARE(timeline.selectionStart(), at("+1 0:00:00"));
        // That day has nothing to choose from.
        QVERIFY(!timeline.enterSelectionMode(false, false));
        QTRY_COMPARE(timeline.endValue(), at("+1 0:17:30"));
    }

private:
    ArchiveWorld world;
};

QTEST_MAIN(TimelineSelectionTest)
#include "TimelineSelectionTest.moc"
