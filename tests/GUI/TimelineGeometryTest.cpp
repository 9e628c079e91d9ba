// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include <ctime>

#include "tests/GUI/TimelineStrip.h"

using ZorvaneClient::GUI::Timeline;
using ZorvaneClient::GUI::Internal::localTime;
using ZorvaneClient::GUI::Internal::TimelinePrivate;
using ZorvaneClient::Tests::at;
using ZorvaneClient::Tests::stripDay;
using ZorvaneClient::Tests::thousandPixelScale;
using ZorvaneClient::Tests::TimelineStrip;

namespace {

bool isInOrder(const TimelinePrivate &state)
{
    return state.startValue < state.endValue && !(state.startValue < state.dayStart()) &&
           !(state.dayEnd() < state.endValue);
}

void useZone(const char *zone)
{
    qputenv("TZ", zone);
    tzset();
}

void turnWheel(QWidget *widget, int x, QPoint angle, Qt::KeyboardModifiers modifiers)
{
    const QPointF position(x, 20);
    QWheelEvent event(position, widget->mapToGlobal(position.toPoint()), QPoint(), angle,
                      Qt::NoButton, modifiers, Qt::NoScrollPhase, false);
    QCoreApplication::sendEvent(widget, &event);
    QVERIFY(event.isAccepted());
}

} // namespace

/// The strip's mapping between pixels and times, its window, and what moves it.
class TimelineGeometryTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { useZone("Europe/Berlin"); }

    void timeAtPixel_data()
    {
        QTest::addColumn<int>("width");
        QTest::addColumn<QString>("start");
        QTest::addColumn<QString>("end");
        QTest::addColumn<int>("x");
        QTest::addColumn<QString>("expected");
        const auto row = [](int width, const char *start, const char *end, int x,
                            const char *time) {
            QTest::addRow("%d wide, %s to %s, x %d", width, start, end, x)
                << width << start << end << x << time;
        };
        for (const int width : {31, 1030, 4000}) {
            row(width, "0:00:00", "23:59:59", 15, "0:00:00");
            row(width, "0:00:00", "23:59:59", width - 15, "23:59:59");
        }
        row(1030, "0:00:00", "23:59:59", 515, "11:59:59");
        row(1030, "0:00:00", "23:59:59", 16, "0:01:26");
        row(1030, "0:00:00", "23:59:59", 14, "-1 23:58:34");
        row(1030, "0:00:00", "23:59:59", 1016, "+1 0:01:25");
        row(4000, "0:00:00", "23:59:59", 2000, "11:59:59");
        // Truncated toward zero on both sides of the window's start.
        row(1030, "10:00:00", "10:10:00", 16, "10:00:00");
        row(1030, "10:00:00", "10:10:00", 17, "10:00:01");
        row(1030, "10:00:00", "10:10:00", 14, "10:00:00");
        row(1030, "10:00:00", "10:10:00", 13, "9:59:59");
        row(1030, "10:00:00", "10:10:00", 515, "10:05:00");
        // Strips of margins only.
        row(0, "0:00:00", "23:59:59", 0, "11:59:59");
        row(0, "0:00:00", "23:59:59", -15, "23:59:59");
        row(29, "0:00:00", "23:59:59", 16, "-1 0:00:01");
        row(30, "10:00:00", "10:10:00", 15, "10:00:00");
        row(30, "10:00:00", "10:10:00", 16, "10:00:00");
    }

    void timeAtPixel()
    {
        QFETCH(int, width);
        QFETCH(QString, start);
        QFETCH(QString, end);
        QFETCH(int, x);
        QFETCH(QString, expected);
        TimelineStrip strip(width);
        strip.setWindow(start, end);
        QCOMPARE(strip.state.timeAt(x), at(expected));
    }

    void pixelAtTime_data()
    {
        QTest::addColumn<int>("width");
        QTest::addColumn<QString>("start");
        QTest::addColumn<QString>("end");
        QTest::addColumn<QString>("time");
        QTest::addColumn<int>("expected");
        const auto row = [](int width, const char *start, const char *end, const char *time,
                            int x) {
            QTest::addRow("%d wide, %s to %s, %s", width, start, end, time)
                << width << start << end << time << x;
        };
        for (const int width : {0, 29, 30, 31, 1030, 4000}) {
            row(width, "0:00:00", "23:59:59", "0:00:00", 15);
            row(width, "0:00:00", "23:59:59", "23:59:59", width - 15);
        }
        row(1030, "0:00:00", "23:59:59", "12:00:00", 515);
        row(1030, "0:00:00", "23:59:59", "0:01:26", 15);
        row(1030, "0:00:00", "23:59:59", "0:01:27", 16);
        row(1030, "0:00:00", "23:59:59", "-1 23:58:34", 15);
        row(1030, "0:00:00", "23:59:59", "-1 23:58:33", 14);
        row(4000, "0:00:00", "23:59:59", "6:00:00", 1007);
        row(1030, "10:00:00", "10:10:00", "10:05:00", 515);
        row(1030, "10:00:00", "10:10:00", "10:00:01", 16);
        row(1030, "10:00:00", "10:10:00", "9:59:59", 14);
        row(0, "0:00:00", "23:59:59", "12:00:00", 0);
        // Years off, within what a number of pixels can say.
        row(4000, "10:00:00", "10:10:00", "-20000 10:00:00", 15 - 1000000000);
        row(4000, "10:00:00", "10:10:00", "+20000 10:00:00", 15 + 1000000000);
    }

    void pixelAtTime()
    {
        QFETCH(int, width);
        QFETCH(QString, start);
        QFETCH(QString, end);
        QFETCH(QString, time);
        QFETCH(int, expected);
        TimelineStrip strip(width);
        strip.setWindow(start, end);
        QCOMPARE(strip.state.pixelAt(at(time)), expected);
    }

    void secondsBetweenPixels()
    {
        TimelineStrip strip;
        strip.setWindow("10:00:00", "10:10:00");
        QCOMPARE(strip.state.secondsBetween(15, 515), 300);
        QCOMPARE(strip.state.secondsBetween(515, 15), -300);
        QCOMPARE(strip.state.secondsBetween(15, 16), 0);
    }

    void clamp_data()
    {
        const char *const first = "0:00:00";
        const char *const last = "23:59:59";
        rows<QDateTime, QDateTime, QString, QString>(
            {"start", "end", "expectedStart", "expectedEnd"},
            {
                {"within", at("1:00:00"), at("2:00:00"), "1:00:00", "2:00:00"},
                {"begins early", at("-1 23:00:00"), at("2:00:00"), first, "2:00:00"},
                {"ends late", at("1:00:00"), at("+1 0:00:00"), "1:00:00", last},
                {"no width", at("1:00:00"), at("1:00:00"), first, last},
                {"turned round", at("2:00:00"), at("1:00:00"), first, last},
                {"day before", at("-1 1:00:00"), at("-1 2:00:00"), first, last},
                {"day after", at("+1 1:00:00"), at("+1 2:00:00"), first, last},
                {"no times", QDateTime(), QDateTime(), first, last},
            });
    }

    void clamp()
    {
        const auto [start, end, expectedStart, expectedEnd] =
            row<QDateTime, QDateTime, QString, QString>();
        TimelineStrip strip;
        strip.state.startValue = start;
        strip.state.endValue = end;
        strip.state.clampWindow();
        QCOMPARE(strip.state.startValue, at(expectedStart));
        QCOMPARE(strip.state.endValue, at(expectedEnd));
    }

    void zoomStep_data()
    {
        rows<QString, QString, int, QString, bool, QString, QString, int>(
            {"start", "end", "direction", "center", "steps", "newStart", "newEnd", "level"},
            {
                {"whole day, in", "0:00:00", "23:59:59", 1, "12:00:00", true, "0:35:45", "23:24:15",
                 5},
                {"whole day, out", "0:00:00", "23:59:59", -1, "12:00:00", false, "0:00:00",
                 "23:59:59", 0},
                {"whole day, neither", "0:00:00", "23:59:59", 0, "12:00:00", true, "0:00:00",
                 "23:59:59", 0},
                {"4789 s, in", "10:00:00", "11:19:49", 1, "10:00:00", false, "10:00:00", "11:19:49",
                 100},
                {"4790 s, in", "10:00:00", "11:19:50", 1, "10:00:00", true, "10:00:00", "10:08:20",
                 100},
                {"to 600 s", "10:00:00", "11:21:30", 1, "11:21:30", true, "11:11:30", "11:21:30",
                 100},
                {"half a level", "10:00:00", "11:28:39", 1, "10:00:00", true, "10:00:00",
                 "10:17:09", 99},
                {"out", "12:00:00", "13:00:00", -1, "12:30:00", true, "11:24:15", "13:35:45", 92},
                {"neither", "12:00:00", "13:00:00", 0, "12:30:00", true, "11:24:15", "13:35:45",
                 92},
                {"about a quarter", "12:00:00", "13:00:00", -1, "12:15:00", true, "11:42:08",
                 "13:53:37", 92},
                {"out, to the day's begin", "0:10:00", "1:10:00", -1, "0:40:00", true, "0:00:00",
                 "1:45:45", 93},
                {"about a time outside", "12:00:00", "14:00:00", 1, "0:00:00", true, "4:51:00",
                 "5:39:30", 97},
            });
    }

    void zoomStep()
    {
        const auto [start, end, direction, center, steps, newStart, newEnd, level] =
            row<QString, QString, int, QString, bool, QString, QString, int>();
        TimelineStrip strip;
        strip.setWindow(start, end);
        strip.state.zoomLevel = 50;
        QCOMPARE(strip.state.zoomStep(direction, at(center)), steps);
        QCOMPARE(strip.state.startValue, at(newStart));
        QCOMPARE(strip.state.endValue, at(newEnd));
        QCOMPARE(strip.state.zoomLevel, level);
    }

    void zoomToLevel()
    {
        TimelineStrip strip;
        QSignalSpy zoomed(&strip.owner, &Timeline::zoomed);
        const auto levels = [&zoomed] {
            QList<int> result;
            while (!zoomed.isEmpty())
                result << zoomed.takeFirst().first().toInt();
            return result;
        };
        strip.owner.zoom(12);
        QCOMPARE(levels(), (QList<int>{5, 10, 15}));
        strip.owner.zoom(15);
        QCOMPARE(levels(), QList<int>());
        strip.owner.zoom(14);
        QCOMPARE(levels(), QList<int>{10});
        strip.owner.zoomOut();
        strip.owner.zoomIn();
        QCOMPARE(levels(), (QList<int>{5, 10}));
        strip.owner.zoom(0);
        QCOMPARE(levels().last(), 0);
        QCOMPARE(strip.owner.startValue(), at("0:00:00"));
        QCOMPARE(strip.owner.endValue(), at("23:59:59"));
        strip.owner.zoom(100);
        QCOMPARE(levels().last(), 100);
        QVERIFY(strip.owner.startValue().secsTo(strip.owner.endValue()) < 4790);
    }

    void zoomEndsWhereNothingMoves()
    {
        TimelineStrip strip;
        strip.owner.zoom(1000);
        QVERIFY(strip.owner.startValue().secsTo(strip.owner.endValue()) < 4790);
        strip.owner.zoom(-1000);
        QCOMPARE(strip.owner.startValue(), at("0:00:00"));
        // On one pixel all room is taken from one side, where there can be none.
        TimelineStrip narrow(31);
        narrow.owner.zoom(50);
        narrow.owner.setStartValue(at("12:00:00"));
        narrow.owner.setEndValue(at("23:59:59"));
        narrow.owner.zoom(0);
        QCOMPARE(narrow.owner.startValue(), at("12:00:00"));
    }

    void wheel_data()
    {
        QTest::addColumn<QString>("start");
        QTest::addColumn<QString>("end");
        QTest::addColumn<int>("x");
        QTest::addColumn<QPoint>("angle");
        QTest::addColumn<int>("modifiers");
        QTest::addColumn<QString>("newStart");
        QTest::addColumn<QString>("newEnd");
        QTest::addColumn<int>("level"); // -1: none emitted
        const auto row = [](const char *name, const char *start, const char *end, int x, int delta,
                            const char *newStart, const char *newEnd, int level,
                            int modifiers = Qt::NoModifier) {
            QTest::newRow(name) << start << end << x << QPoint(0, delta) << modifiers << newStart
                                << newEnd << level;
        };
        row("a notch in", "0:00:00", "23:59:59", 515, 120, "0:35:44", "23:24:14", 5);
        row("two at once", "0:00:00", "23:59:59", 515, 240, "0:35:44", "23:24:14", 5);
        row("a notch out", "12:00:00", "13:00:00", 515, -120, "11:24:15", "13:35:45", 92);
        row("small in", "12:00:00", "13:00:00", 515, 119, "11:24:15", "13:35:45", 92);
        row("small out", "12:00:00", "13:00:00", 515, -1, "11:24:15", "13:35:45", 92);
        row("out of the whole day", "0:00:00", "23:59:59", 515, -120, "0:00:00", "23:59:59", -1);
        row("left margin", "12:00:00", "14:00:00", 15, 120, "4:51:00", "5:39:30", 97);
        row("right of it", "12:00:00", "14:00:00", 16, 120, "12:00:04", "12:48:35", 97);
        row("left of the day", "0:00:00", "23:59:59", -50, 120, "0:00:00", "22:48:29", 5);
        row("twice the margin", "12:00:00", "14:00:00", 1000, 120, "19:08:59", "19:57:29", 97);
        row("left of that", "12:00:00", "14:00:00", 999, 120, "13:10:20", "13:58:51", 97);
        row("right of the day", "0:00:00", "23:59:59", 1030, 120, "1:11:30", "23:59:59", 5);
        row("Ctrl, 120", "12:00:00", "13:00:00", 515, 120, "12:02:30", "13:02:30", -1,
            Qt::ControlModifier);
        row("Ctrl, 119", "12:00:00", "13:00:00", 515, 119, "11:57:30", "12:57:30", -1,
            Qt::ControlModifier);
        row("Ctrl and Shift", "12:00:00", "13:00:00", 515, -120, "11:24:15", "13:35:45", 92,
            int(Qt::ControlModifier) | int(Qt::ShiftModifier));
        QTest::newRow("sideways") << "12:00:00"
                                  << "13:00:00" << 515 << QPoint(120, 0) << int(Qt::NoModifier)
                                  << "12:00:00"
                                  << "13:00:00" << -1;
    }

    void wheel()
    {
        QFETCH(QString, start);
        QFETCH(QString, end);
        QFETCH(int, x);
        QFETCH(QPoint, angle);
        QFETCH(int, modifiers);
        QFETCH(QString, newStart);
        QFETCH(QString, newEnd);
        QFETCH(int, level);
        TimelineStrip strip;
        strip.owner.setStartValue(at(start));
        strip.owner.setEndValue(at(end));
        QSignalSpy zoomed(&strip.owner, &Timeline::zoomed);
        turnWheel(&strip.owner, x, angle, Qt::KeyboardModifiers(modifiers));
        QCOMPARE(strip.owner.startValue(), at(newStart));
        QCOMPARE(strip.owner.endValue(), at(newEnd));
        QCOMPARE(zoomed.isEmpty() ? -1 : zoomed.first().first().toInt(), level);
    }

    void scroll_data()
    {
        rows<QString, QString, int, QString, QString>(
            {"start", "end", "delta", "newStart", "newEnd"},
            {
                {"120", "2:00:00", "12:00:00", 120, "2:25:00", "12:25:00"},
                {"119", "2:00:00", "12:00:00", 119, "1:35:00", "11:35:00"},
                {"0", "2:00:00", "12:00:00", 0, "1:35:00", "11:35:00"},
                {"-120", "2:00:00", "12:00:00", -120, "1:35:00", "11:35:00"},
                {"a tenth of the day", "2:00:00", "4:24:00", 120, "2:06:00", "4:30:00"},
                {"little room before", "0:10:00", "10:10:00", 0, "0:00:00", "10:00:00"},
                {"little room after", "13:50:00", "23:50:00", 120, "13:59:59", "23:59:59"},
                {"whole day", "0:00:00", "23:59:59", 120, "0:00:00", "23:59:59"},
            });
    }

    void scroll()
    {
        const auto [start, end, delta, newStart, newEnd] =
            row<QString, QString, int, QString, QString>();
        TimelineStrip strip;
        strip.setWindow(start, end);
        strip.state.scrollBy(delta);
        QCOMPARE(strip.state.startValue, at(newStart));
        QCOMPARE(strip.state.endValue, at(newEnd));

        strip.owner.setStartValue(at("2:00:00"));
        strip.owner.setEndValue(at("12:00:00"));
        strip.owner.scrollLeft();
        QCOMPARE(strip.owner.startValue(), at("2:25:00"));
        strip.owner.scrollRight();
        QCOMPARE(strip.owner.endValue(), at("12:00:00"));
    }

    void pan_data()
    {
        rows<QString, QString, int, int>({"start", "end", "x", "moved"},
                                         {
                                             {"two seconds", "10:00:00", "10:10:00", 513, 2},
                                             {"one second", "10:00:00", "10:10:00", 514, 1},
                                             {"less than one", "10:00:00", "10:10:00", 516, 0},
                                             {"one second back", "10:00:00", "10:10:00", 517, -1},
                                             {"at the day's begin", "0:00:00", "0:10:00", 900, 0},
                                             {"near it", "0:00:30", "0:10:30", 900, -30},
                                             {"at the day's end", "23:49:59", "23:59:59", 100, 0},
                                             {"near that", "23:49:30", "23:59:30", 100, 29},
                                         });
    }

    void pan()
    {
        const auto [start, end, x, moved] = row<QString, QString, int, int>();
        TimelineStrip strip;
        strip.setWindow(start, end);
        strip.state.lastX = 515;
        QCOMPARE(strip.state.pan(x), moved != 0);
        QCOMPARE(strip.state.startValue, at(start).addSecs(moved));
        QCOMPARE(strip.state.endValue, at(end).addSecs(moved));
        QCOMPARE(strip.state.lastX, x);
    }

    void clockChanges_data()
    {
        rows<QByteArray, QDate, int>(
            {"zone", "date", "seconds"},
            {
                {"23 hours", QByteArray("Europe/Berlin"), QDate(2026, 3, 29), 82799},
                {"25 hours", QByteArray("Europe/Berlin"), QDate(2026, 10, 25), 89999},
                {"no midnight", QByteArray("America/Sao_Paulo"), QDate(2017, 10, 15), 82799},
            });
    }

    void clockChanges()
    {
        const auto [zone, date, seconds] = row<QByteArray, QDate, int>();
        useZone(zone);
        TimelineStrip strip(thousandPixelScale, date);
        TimelinePrivate &state = strip.state;
        QCOMPARE(state.startValue, date.startOfDay());
        QCOMPARE(state.startValue.secsTo(state.endValue), seconds);
        for (int x = 16; x <= 1015; ++x) {
            QVERIFY(state.timeAt(x - 1) < state.timeAt(x));
            QVERIFY(qAbs(state.pixelAt(state.timeAt(x)) - x) <= 1);
        }
        // Wherever the window is, it stays in the day.
        for (int x = 15; x <= 1015; x += 100) {
            state.startValue = state.dayStart();
            state.endValue = state.dayEnd();
            for (int step = 0; step < 20; ++step)
                state.zoomStep(1, state.timeAt(x));
            for (const int goal : {-50000, 50000}) {
                for (int step = 0; step < 10; ++step) {
                    state.lastX = 515;
                    state.pan(goal);
                    QVERIFY(isInOrder(state));
                }
                QCOMPARE(goal < 0 ? state.endValue : state.startValue,
                         goal < 0 ? state.dayEnd() : state.dayStart());
            }
            for (const int delta : {120, -120}) {
                for (int step = 0; step < 200; ++step)
                    state.scrollBy(delta);
                QVERIFY(isInOrder(state));
            }
            for (int step = 0; step < 80; ++step) {
                state.zoomStep(-1, state.timeAt(515));
                QVERIFY(isInOrder(state));
            }
            QVERIFY(state.isWholeDay());
        }
    }

    void timesThatTheClockSkips()
    {
        const QDate spring(2026, 3, 29);
        QCOMPARE(localTime(spring, QTime(2, 30)), QDateTime(spring, QTime(3, 30)));
        Timeline timeline(stripDay);
        timeline.setStartValue(at("2:15:00"));
        timeline.setEndValue(at("2:45:00"));
        timeline.changeDate(spring);
        QCOMPARE(timeline.startValue(), QDateTime(spring, QTime(3, 15)));
        QCOMPARE(timeline.endValue(), QDateTime(spring, QTime(3, 45)));

        timeline.changeDate(stripDay);
        timeline.setStartValue(at("2:45:00"));
        timeline.setEndValue(at("3:15:00"));
        timeline.changeDate(spring);
        QVERIFY(timeline.startValue() < timeline.endValue());
        QCOMPARE(timeline.startValue().date(), spring);
    }
};

QTEST_MAIN(TimelineGeometryTest)
#include "TimelineGeometryTest.moc"
