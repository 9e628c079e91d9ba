// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "GUI/TimelineScale.h"

using namespace ZorvaneClient::GUI::Internal;

namespace {

const QDate day(2026, 3, 10);
/// 1000 pixels of scale, in which 25 labels of 40 pixels fit.
constexpr int width = 1030;
constexpr ScaleTextWidths texts{40, 14, 31};

QDateTime at(int hour, int minute, int second = 0)
{
    return QDateTime(day, QTime(hour, minute, second));
}

QList<int> numbers(const TickPlan &plan)
{
    return {plan.labelStep,  plan.majorEvery, plan.mediumEvery,
            plan.minorEvery, plan.labelEvery, plan.ticksPerHour};
}

QList<int> heights(const TimelineScale &scale, int count)
{
    QList<int> result;
    for (const ScaleTick &tick : scale.ticks.mid(0, count))
        result.append(tick.height);
    return result;
}

/// The labels as "x text".
QStringList labels(const TimelineScale &scale)
{
    QStringList result;
    for (const ScaleTick &tick : scale.ticks) {
        if (!tick.label.isNull())
            result.append("%1 %2"_s.arg(tick.x).arg(tick.label));
    }
    return result;
}

} // namespace

class TimelineScaleTest : public QObject
{
    Q_OBJECT

private slots:
    void plan_data()
    {
        const QList<int> tenSeconds{60, 6, 3, 0, 6, 360};
        const QList<int> halfMinute{300, 10, 2, 0, 10, 120};
        const QList<int> minute{600, 10, 5, 0, 10, 60};
        const QList<int> twoMinutes{900, 15, 5, 0, 15, 30};
        const QList<int> fiveMinutes{1800, 6, 3, 0, 6, 12};
        const QList<int> tenMinutes{3600, 6, 3, 0, 6, 6};
        const QList<int> halfHour{7200, 4, 2, 0, 4, 2};
        const QList<int> hour{28800, 2, 0, -1, 4, 1};
        // The whole day lacks a second of 24 hours.
        const double wholeDay = 86399 / 3600.0;
        rows<int, double, QList<int>>({"room", "hours", "numbers"},
                                      {
                                          // Two hours; each row begins at the room told here and
                                          // ends one below the row above.
                                          {"10 s", 121, 2.0, tenSeconds},
                                          {"above 30 s", 120, 2.0, halfMinute},
                                          {"30 s", 25, 2.0, halfMinute},
                                          {"above 1 min", 24, 2.0, minute},
                                          {"1 min", 13, 2.0, minute},
                                          {"above 2 min", 12, 2.0, twoMinutes},
                                          {"2 min", 9, 2.0, twoMinutes},
                                          {"above 5 min", 8, 2.0, fiveMinutes},
                                          {"5 min", 4, 2.0, fiveMinutes},
                                          {"above 10 min", 3, 2.0, tenMinutes},
                                          {"10 min", 2, 2.0, tenMinutes},
                                          {"30 min", 1, 2.0, halfHour},
                                          {"day, 10 min", 24, wholeDay, tenMinutes},
                                          {"day, above 30 min", 23, wholeDay, halfHour},
                                          {"day, 30 min", 8, wholeDay, halfHour},
                                          {"day, 1 h", 7, wholeDay, hour},
                                          {"less than nothing", -1, 1.0, halfHour},
                                      });
    }

    void plan()
    {
        const auto [room, hours] = row<int, double>();
        QTEST(numbers(tickPlan(room, hours)), "numbers");
    }

    void heightOfTicks()
    {
        const TickPlan plan{0, 6, 3, 2, 6, 6};
        QList<int> all;
        for (int index = 0; index <= 6; ++index)
            all.append(tickHeight(plan, index));
        QCOMPARE(all, (QList<int>{6, 0, 3, 4, 3, 0, 6}));
    }

    void wholeDay()
    {
        const TimelineScale scale = timelineScale(at(0, 0), at(23, 59, 59), width, texts);
        QCOMPARE(scale.labelWidth, texts.hour);
        // Every ten minutes from 00:00 to 23:50, and the end.
        QCOMPARE(scale.ticks.size(), 145);
        QCOMPARE(heights(scale, 7), (QList<int>{6, 3, 3, 4, 3, 3, 6}));
        const QStringList all = labels(scale);
        QCOMPARE(all.size(), 25);
        QCOMPARE(all.mid(0, 3), (QStringList{"15 00", "56 01", "98 02"}));
        QCOMPARE(all.mid(23), (QStringList{"973 23", "1015 24"}));
        QCOMPARE(scale.ticks.last().height, 6);
    }

    void leavesTheLeftMarginEmpty()
    {
        const TimelineScale scale = timelineScale(at(10, 17), at(11, 17), width, texts);
        QCOMPARE(scale.labelWidth, texts.minute);
        // Ticks count from 10:00 in half minutes: the first one in sight has number 34.
        QCOMPARE(scale.ticks.first().x, 15);
        QCOMPARE(heights(scale, 8), (QList<int>{4, 3, 4, 3, 4, 3, 6, 3}));
        QCOMPARE(scale.ticks.size(), 121);
        const QStringList all = labels(scale);
        QCOMPARE(all.size(), 12);
        QCOMPARE(all.mid(0, 2), (QStringList{"65 10:20", "148 10:25"}));
        QCOMPARE(all.last(), "981 11:15"_s);
    }

    void finestTicks()
    {
        const TimelineScale scale = timelineScale(at(12, 0), at(12, 10), width, texts);
        QCOMPARE(scale.ticks.size(), 61);
        QCOMPARE(heights(scale, 7), (QList<int>{6, 3, 3, 4, 3, 3, 6}));
        QCOMPARE(scale.ticks.at(1).x, 31); // 16.7 pixels for 10 seconds
        QCOMPARE(labels(scale).mid(0, 2), (QStringList{"15 12:00", "115 12:01"}));
        QCOMPARE(labels(scale).last(), "1015 12:10"_s);
    }

    void hourLabelsUntilTheEndOfTheDay()
    {
        // Ten hours and room for 25 labels: 5 minutes between ticks, half an hour between labels.
        const TimelineScale scale = timelineScale(at(14, 0), at(23, 59, 59), width, texts);
        const QStringList all = labels(scale);
        QCOMPARE(all.first(), "15 14:00"_s);
        QCOMPARE(all.mid(all.size() - 2), (QStringList{"965 23:30", "1015 24:00"}));
        // A window that ends earlier has no closing label.
        const QStringList earlier = labels(timelineScale(at(14, 0), at(23, 59, 58), width, texts));
        QCOMPARE(earlier.last(), "965 23:30"_s);
    }

    void labelsNearTheEndOfTheDay()
    {
        const TimelineScale scale = timelineScale(at(23, 50), at(23, 59, 59), width, texts);
        const QStringList all = labels(scale);
        QCOMPARE(all.mid(all.size() - 3), (QStringList{"816 23:58", "916 24:00", "1015 24:00"}));
    }

    void fewLabels()
    {
        // Four labels into a day.
        const TimelineScale scale = timelineScale(at(0, 0), at(23, 59, 59), 200, texts);
        QCOMPARE(scale.plan.labelStep, 28800);
        QCOMPARE(heights(scale, 5), (QList<int>{6, 4, 6, 4, 6}));
        QCOMPARE(labels(scale),
                 (QStringList{"15 00", "43 04", "71 08", "100 12", "128 16", "156 20", "185 24"}));
    }

    void noRoomAtAll()
    {
        for (const int narrow : {0, 15, 30}) {
            const TimelineScale scale = timelineScale(at(10, 0), at(11, 0), narrow, texts);
            QCOMPARE(scale.plan.labelStep, 7200);
        }
        // All of it lies on the margin's edge.
        const TimelineScale edge = timelineScale(at(10, 0), at(11, 0), 30, texts);
        QCOMPARE(labels(edge), QStringList{"15 10"});
        QCOMPARE(edge.ticks.size(), 3);
    }
};

QTEST_GUILESS_MAIN(TimelineScaleTest)
#include "TimelineScaleTest.moc"
