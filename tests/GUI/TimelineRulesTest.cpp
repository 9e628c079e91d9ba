// SPDX-License-Identifier: MIT
// What the strip computes, without a window: see TimelineTest for what the user sees.
#include "GUI/TimelineScale.h"
#include "tests/GUI/TimelineStrip.h"

using namespace GUI::Internal;

namespace {

const QString wholeDay = "0:00 to 23:59:59"_s;
/// Each case says "what goes in -> what comes out".
QStringList resultsOf(const QStringList &cases, const std::function<QString(QString)> &rule)
{
    QStringList results;
    for (const QString &each : cases) {
        const QString input = each.section(" -> ", 0, 0);
        results.append(input + " -> " + rule(input));
    }
    return results;
}

using Moments = QList<std::tuple<QDateTime, int, QDateTime>>;

/// What is to be played, found by looking at each record, one after the other.
Moments momentsByTheRule(const QList<API::CameraPtr> &cameras, const QDateTime &position)
{
    QDateTime next = position.addDays(1);
    Moments moments;
    for (const API::CameraPtr &camera : cameras) {
        for (const API::ArchiveRecord &record : camera->records(position.date())) {
            if (position < record.end)
                next = qMin(next, qMax(position, record.start));
        }
    }
    for (const API::CameraPtr &camera : cameras) {
        for (const API::ArchiveRecord &record : camera->records(position.date())) {
            if (next < record.end)
                moments.append({qMax(record.start, next), camera->id(), record.end});
        }
    }
    std::sort(moments.begin(), moments.end());
    return moments;
}

} // namespace

class TimelineRulesTest : public QObject
{
    Q_OBJECT

private slots:
    void init() { QVERIFY(world.begin()); }

    void pixelsAndTimes_data()
    {
        const QString tenMinutes = "10:00 to 10:10";
        rows<int, QString, QString>(
            {"width", "window", "cases"},
            {{"day", stripWidth, wholeDay,
              "x 14 -> -1 23:58:34; x 15 -> 0:00; x 16 -> 0:01:26; x 515 -> 11:59:59; "
              "x 1015 -> 23:59:59; x 1016 -> +1 0:01:25; -1 23:58:33 -> x 14; -1 23:58:34 -> x 15; "
              "0:01:26 -> x 15; 0:01:27 -> x 16; 12:00 -> x 515; 23:59:59 -> x 1015"},
             // Truncated toward zero, and years off within what a number of pixels can say.
             {"ten minutes", stripWidth, tenMinutes,
              "x 13 -> 9:59:59; x 14 -> 10:00; x 16 -> 10:00; x 17 -> 10:00:01; 9:59:59 -> x 14; "
              "10:00:01 -> x 16; -20000 10:00 -> x -999999985; +20000 10:00 -> x 1000000015"},
             {"one pixel", 31, wholeDay, "x 15 -> 0:00; x 16 -> 23:59:59; 23:59:59 -> x 16"},
             {"nothing", 0, wholeDay, "x 0 -> 11:59:59; x -15 -> 23:59:59; 12:00 -> x 0"},
             {"no time", stripWidth, "10:00 to 10:00", "x 515 -> 10:00; 10:00 -> x 15"}});
    }

    void pixelsAndTimes()
    {
        const auto [width, window, cases] = row<int, QString, QString>();
        const DayWindow shown = dayWindow(window, width);
        const auto rule = [&shown](const QString &input) {
            return input.startsWith("x ") ? Tests::textOf(shown.timeAt(input.mid(2).toInt()))
                                          : "x %1"_s.arg(shown.pixelAt(at(input)));
        };
        QCOMPARE(resultsOf(cases.split("; "), rule).join("; "), cases);
    }

    void windowStaysInTheDay()
    {
        const QStringList cases{
            "-1 23:00 to 2:00 -> 0:00 to 2:00",      "1:00 to +1 0:00 -> 1:00 to 23:59:59",
            "1:00 to 1:01 -> 1:00 to 1:01",          "1:00 to 1:00 -> 0:00 to 23:59:59",
            "2:00 to 1:00 -> 0:00 to 23:59:59",      "-1 1:00 to -1 2:00 -> 0:00 to 23:59:59",
            "+1 1:00 to +1 2:00 -> 0:00 to 23:59:59"};
        const auto clamped = [](const QString &span) {
            DayWindow window = dayWindow(span);
            window.clamp();
            return Tests::textOf(window.start, window.end);
        };
        QCOMPARE(resultsOf(cases, clamped), cases);

        // On another day whose clock skips 2:00 to 3:00.
        const QDate spring(2026, 3, 29);
        const QStringList skipped{"2:15 to 2:45 -> +19 3:15 to +19 3:45",
                                  "2:45 to 3:15 -> +19 0:00 to +19 23:59:59"};
        const auto changed = [&spring](const QString &window) {
            GUI::Timeline timeline(stripDay);
            setWindow(timeline, window);
            timeline.changeDate(spring);
            return windowOf(timeline);
        };
        QCOMPARE(resultsOf(skipped, changed), skipped);
    }

    void clockChanges_data()
    {
        rows<QByteArray, QDate, int>({"zone", "date", "seconds"},
                                     {{"23 hours", berlin, QDate(2026, 3, 29), 82799},
                                      {"25 hours", berlin, QDate(2026, 10, 25), 89999},
                                      {"no midnight", brasilia, QDate(2018, 11, 4), 82799}});
    }

    void clockChanges()
    {
        const auto [zone, date, seconds] = row<QByteArray, QDate, int>();
        useZone(zone);
        DayWindow window{date, firstSecond(date), lastSecond(date), stripWidth};
        QCOMPARE(window.start, date.startOfDay());
        QCOMPARE(window.seconds(), seconds);
        for (int x = 16; x <= 1015; ++x) {
            QVERIFY(window.timeAt(x - 1) < window.timeAt(x));
            QVERIFY(qAbs(window.pixelAt(window.timeAt(x)) - x) <= 1);
        }
        // Wherever the window is, it stays in the day: closer, to both ends, and wider again.
        for (int x = 15; x <= 1015; x += 100) {
            for (int step = 0; step < 200; ++step) {
                if (step < 20)
                    window.zoom(1, window.timeAt(x));
                else if (step < 60)
                    window.pan(515, step < 40 ? -50000 : 50000);
                else if (step < 120)
                    window.scroll(step < 80 ? 120 : -120);
                else
                    window.zoom(-1, window.timeAt(515));
                QVERIFY(window.start < window.end);
                QVERIFY(window.dayStart() <= window.start && window.end <= window.dayEnd());
            }
            QVERIFY(window.isWholeDay());
        }
    }

    void scale_data()
    {
        // The number of ticks and the heights of the first; how wide labels are, the first two
        // and the last two; the class that selections snap by. As long as labels have the room.
        rows<int, QString, QString>(
            {"width", "window", "expected"},
            {{"10 s", stripWidth, "12:00 to 12:24",
              "145 63343363 | 31: 15 12:00, 56 12:01, .., 973 12:23, 1015 12:24 | 60"},
             {"less room", stripWidth, "12:00 to 12:24:01",
              "49 63434343 | 31: 15 12:00, 223 12:05, .., 639 12:15, 847 12:20 | 300"},
             {"30 s, left margin empty", stripWidth, "10:17 to 12:17",
              "241 43434363 | 31: 40 10:20, 81 10:25, .., 956 12:10, 998 12:15 | 300"},
             {"2 min", stripWidth, "10:00 to 16:00",
              "181 63333433 | 31: 15 10:00, 98 10:30, .., 931 15:30, 1015 16:00 | 900"},
             {"to the day's end", stripWidth, "14:00 to 23:59:59",
              "121 63343363 | 31: 15 14:00, 65 14:30, .., 965 23:30, 1015 24:00 | 1800"},
             {"600 s", 990, wholeDay, "145 63343363 | 14: 15 00, 55 01, .., 935 23, 975 24 | 3600"},
             {"30 min", 989, wholeDay, "49 63436343 | 14: 15 00, 94 02, .., 894 22, 974 24 | 7200"},
             {"1 h", 349, wholeDay, "25 64646464 | 14: 15 00, 68 04, .., 280 20, 334 24 | 28800"}});
    }

    void scale()
    {
        const auto [width, window] = row<int, QString>();
        const TimelineScale scale = timelineScale(dayWindow(window, width), {40, 14, 31});
        QString heights;
        QStringList labels;
        for (const ScaleTick &tick : scale.ticks) {
            heights += QString::number(tick.height);
            if (!tick.label.isNull())
                labels.append("%1 %2"_s.arg(tick.x).arg(tick.label));
        }
        if (labels.size() > 4)
            labels = labels.mid(0, 2) + QStringList{".."} + labels.mid(labels.size() - 2);
        QTEST("%1 %2 | %3: %4 | %5"_s.arg(scale.ticks.size())
                  .arg(heights.left(8))
                  .arg(scale.labelWidth)
                  .arg(labels.join(", "))
                  .arg(scale.plan.labelStep),
              "expected");
    }

    void drags_data()
    {
        // One second in a pixel, but 20 in a wide view; x 15 is the begin.
        const QString near = "10:00 to 10:16:40";
        const QString wide = "6:00 to 11:33:20";
        const QString late = "23:43:19 to 23:59:59";
        const QString middle = "10:05 to 10:10"; // x 315 to 615 of the near view
        const QString hour = "8:00 to 9:00";
        const QString lateOne = "23:50 to 23:55";
        rows<QString, QString, QString, QString>(
            {"window", "selection", "xs", "expected"},
            {{"body, right", near, middle, "603 613", "10:05:10 to 10:10:10"},
             {"start, where both are near", wide, "8:00 to 8:01", "378 360", "7:55 to 8:01"},
             {"left of the right edge", near, near, "1020 900", "10:00 to 10:14:45"},

             {"start to 60 s", near, middle, "315 555", "10:09 to 10:10"},
             {"start to 59 s", near, middle, "315 556", "10:09:01 to 10:14:01"},
             {"end to 60 s", near, middle, "615 375", "10:05 to 10:06"},
             {"end to 59 s", near, middle, "615 374", "10:00:59 to 10:05:59"},
             {"start to 7200 s", wide, hour, "375 195", "7:00 to 9:00"},
             {"start to 7220 s", wide, hour, "375 194", "6:59:40 to 7:59:40"},
             {"end to 7200 s", wide, hour, "555 735", "8:00 to 10:00"},
             {"end to 7220 s", wide, hour, "555 736", "9:00:20 to 10:00:20"},
             {"start, body, start, body", near, middle, "315 556 500 855", "10:14 to 10:19:56"},
             {"end, body, end, body", near, middle, "615 374 700 16", "9:49:35 to 10:00:01"},

             {"nothing is held in the left margin", near, near, "9 100", near},
             {"nor in the right", near, near, "1021 900", near},

             {"snaps over 6 pixels", near, "10:05 to 10:09:30", "585 609", middle},
             {"not over 7", near, "10:05 to 10:09:30", "585 608", "10:05 to 10:09:53"},
             {"start snaps", near, "10:05 to 10:09:30", "315 309", "10:05 to 10:09:30"},
             {"not to below 60 s", near, "10:04:04 to 10:10", "615 320", "10:04:04 to 10:05:05"},
             {"nor the start", near, "10:02 to 10:05:57", "135 312", "10:04:57 to 10:05:57"},
             {"not to a time 24:00", late, lateOne, "716 1012", "23:50 to 23:59:56"},

             {"body past the day's end", late, lateOne, "500 2000", "23:58:35 to 23:59:59"},
             {"start past the day's end", late, lateOne, "416 2000", "23:58:59 to 23:59:59"},
             {"past the begin", "0:00 to 0:16:40", "0:05 to 0:06", "345 -100", "0:00 to 0:01"}});
    }

    void drags()
    {
        const auto [window, selection, xs] = row<QString, QString, QString>();
        const DayWindow shown = dayWindow(window);
        FragmentDrag drag;
        drag.fragment = {spanOf(selection).start, spanOf(selection).end};
        // "press step step ...", in pixels.
        QStringList steps = xs.split(' ');
        drag.take(steps.takeFirst().toInt(), shown);
        for (const QString &x : qAsConst(steps))
            drag.moveTo(x.toInt(), shown, 60);
        QTEST(Tests::textOf(drag.fragment.start, drag.fragment.end), "expected");
    }

    void rulesOfAFragment()
    {
        TimelineStrip strip;
        const QStringList cursors{"14:02:30 -> 14:00 to 14:05", "14:03:20 -> 14:00 to 14:05",
                                  "0:01 -> 0:00 to 0:05",       "23:59:30 -> 23:54:59 to 23:59:59",
                                  "-1 12:00 -> 0:00 to 0:05",   "+1 12:00 -> 23:54:59 to 23:59:59"};
        const auto fragmentAt = [&strip](const QString &cursor) {
            strip.state.currentValue = at(cursor).addMSecs(500);
            return strip.state.selectionAtCurrentTime() ? strip.selection() : QString();
        };
        QCOMPARE(resultsOf(cursors, fragmentAt), cursors);

        // By the class of the scale; near the day's end to nothing.
        const QStringList times{
            "60 10:02:59 -> 10:00", "60 10:03 -> 10:05",      "3600 10:57:59 -> 10:55",
            "3600 10:58 -> 11:00",  "3601 10:07:59 -> 10:00", "7200 10:08 -> 10:15",
            "7200 10:53 -> 11:00",  "7201 10:14:59 -> 10:00", "28800 10:15 -> 10:30",
            "28800 10:45 -> 11:00", "3600 23:57:59 -> 23:55", "3600 23:58 -> ",
            "7200 23:53 -> ",       "28800 23:45 -> "};
        const auto snap = [](const QString &input) {
            const int labelStep = input.section(' ', 0, 0).toInt();
            return Tests::textOf(snapped(at(input.section(' ', 1)), labelStep));
        };
        QCOMPARE(resultsOf(times, snap), times);
    }

    void firstFragment_data()
    {
        // The middle of the view gives 11:57 to 12:02. Cameras stand on both sides of a bar.
        rows<QString, QString>(
            {"cameras", "expected"},
            {{"in the middle", "11:00 to 13:00", "11:57 to 12:02"},
             {"begins within", "12:01:59 to 13:00", "11:57 to 12:02"},
             {"begins at its end", "12:02 to 13:00", "12:02 to 12:07"},
             {"later", "15:30:40 to 16:00, 17:00 to 18:00", "15:30 to 15:35"},
             {"later, second camera", "20:00 to 21:00|18:00 to 18:10", "18:00 to 18:05"},
             {"late", "23:58:10 to 23:59", "23:54:59 to 23:59:59"},
             {"not just before", "11:56 to 11:56:30, 23:00 to 23:10", "23:00 to 23:05"},
             {"earlier", "8:00 to 8:10, 9:15:30 to 9:20", "9:15 to 9:20"},
             {"ends at its begin", "10:00:10 to 11:57", "10:00 to 10:05"},
             {"earlier, second camera", "8:00 to 8:10|9:00 to 9:10", "9:00 to 9:05"},
             {"near enough", "11:52 to 11:53|11:56 to 11:56:30", "11:52 to 11:57"},
             {"not near enough", "11:51:59 to 11:53|11:56 to 11:56:30", "11:56 to 12:01"},
             {"none", "|", ""}});
    }

    void firstFragment()
    {
        const auto [cameras] = row<QString>();
        TimelineStrip strip;
        int id = 0;
        for (const QString &records : cameras.split('|'))
            strip.add(world.loadedCamera(++id, stripDay, recordsOf(records)));
        QTEST(strip.state.defaultSelection() ? strip.selection() : QString(), "expected");
    }

    void goodView_data()
    {
        rows<QString, QString, QString>(
            {"window", "fragment", "expected"},
            {{"short", wholeDay, "14:00 to 14:01", "13:47:30 to 14:17:30"},
             {"of 600 s", wholeDay, "14:00 to 14:10", "13:35 to 14:35"},
             {"of 601 s", wholeDay, "14:00 to 14:10:01", "13:44:58 to 14:25:02"},
             {"near midnight", wholeDay, "0:05 to 0:10", "-1 23:52:30 to 0:22:30"},
             {"far before", "20:00 to 20:10", "14:00 to 14:05", "13:47:30 to 14:17:30"},
             {"at the edge", "14:00 to 14:20", "14:00 to 14:05", "13:47:30 to 14:17:30"},
             {"at the other", "13:50 to 14:05", "14:00 to 14:05", "13:47:30 to 14:17:30"},
             {"in closer view", "13:59:59 to 14:20", "14:00 to 14:05", "13:59:59 to 14:20"}});
    }

    void goodView()
    {
        const auto [window, fragment] = row<QString, QString>();
        const Fragment shown{spanOf(fragment).start, spanOf(fragment).end};
        const DayWindow view = shown.viewFrom(dayWindow(window));
        QTEST(Tests::textOf(view.start, view.end), "expected");
    }

    void playlistByTheRule()
    {
        // Of 24, 23 and 25 hours.
        for (const QDate date : {stripDay, QDate(2026, 3, 29), QDate(2026, 10, 25)}) {
            world.reset();
            QList<API::CameraPtr> cameras;
            QList<QDateTime> positions{date.startOfDay(), date.endOfDay()};
            TimelineStrip strip;
            for (int id = 1; id <= 6; ++id) {
                const auto records = randomRecords(date, id == 6 ? 0 : 40, quint32(id));
                for (const API::ArchiveRecord &each : records)
                    positions << each.start << each.end << each.start.addSecs(1);
                cameras.append(world.loadedCamera(id, date, records));
                QVERIFY(world.load(cameras.last(), date.addDays(-1)));
                strip.add(cameras.last());
            }
            for (const QDateTime &position : qAsConst(positions)) {
                Moments played;
                for (const auto &item : strip.state.playlistForCameras(position)) {
                    QVERIFY(played.isEmpty() || std::get<0>(played.last()) <= item->start);
                    played.append({item->start, item->camera->id(), item->end});
                }
                std::sort(played.begin(), played.end());
                const Moments expected = momentsByTheRule(cameras, position);
                QVERIFY2(played == expected, qPrintable(Tests::textOf(position)));
            }
        }
    }

private:
    StripWorld world;
};

QTEST_MAIN(TimelineRulesTest)
#include "TimelineRulesTest.moc"
