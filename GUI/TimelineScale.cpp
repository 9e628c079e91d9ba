// SPDX-License-Identifier: MIT
#include "GUI/TimelineScale.h"

namespace ZorvaneClient {
namespace GUI {
namespace Internal {

namespace {

constexpr int secondsPerHour = 3600;
constexpr qint64 millisecondsPerSecond = 1000;
constexpr int majorHeight = 6;
constexpr int mediumHeight = 4;
constexpr int minorHeight = 3;

/// A plan fits when `room` is at least hours * labelsPerHour + spareLabels.
struct PlanRow {
    double labelsPerHour;
    double spareLabels;
    TickPlan plan;
};

constexpr PlanRow planRows[] = {
    {60, 1, {60, 6, 3, 0, 6, 360}},  {12, 1, {300, 10, 2, 0, 10, 120}},
    {6, 1, {600, 10, 5, 0, 10, 60}}, {4, 1, {900, 15, 5, 0, 15, 30}},
    {2, 0, {1800, 6, 3, 0, 6, 12}},  {1, 0, {3600, 6, 3, 0, 6, 6}},
    {1, -16, {7200, 4, 2, 0, 4, 2}},
};
constexpr TickPlan widestPlan{28800, 2, 0, -1, 4, 1};

/// The labels of one scale.
struct Labels {
    QString format;
    QString endText;        ///< of the end of the day
    qint64 endTextFrom = 0; ///< from this moment on

    QString at(qint64 moment) const
    {
        return moment < endTextFrom ? QDateTime::fromMSecsSinceEpoch(moment).toString(format)
                                    : endText;
    }
};

Labels labelsFor(const TickPlan &plan, QDate day, const QDateTime &end)
{
    const bool hoursOnly = plan.labelStep >= secondsPerHour;
    Labels labels;
    labels.format = hoursOnly ? QStringLiteral("HH") : QStringLiteral("HH:mm");
    labels.endText = QString::number(end.time().hour() + 1);
    if (!hoursOnly)
        labels.endText += QLatin1String(":00");
    labels.endTextFrom = localTime(day, QTime(23, 59)).toMSecsSinceEpoch();
    return labels;
}

} // namespace

TickPlan tickPlan(int room, double hours)
{
    for (const PlanRow &row : planRows) {
        if (room >= hours * row.labelsPerHour + row.spareLabels)
            return row.plan;
    }
    return widestPlan;
}

int tickHeight(const TickPlan &plan, qint64 index)
{
    if (index % plan.majorEvery == 0)
        return majorHeight;
    if (plan.mediumEvery == 0 || index % plan.mediumEvery == 0)
        return mediumHeight;
    return plan.minorEvery != 0 && index % plan.minorEvery != 0 ? 0 : minorHeight;
}

TimelineScale timelineScale(const DayWindow &window, const ScaleTextWidths &texts)
{
    const TimeAxis axis = window.axis();
    const int room = axis.scaleWidth() / qMax(1, texts.sample);
    const double hours = static_cast<double>(window.seconds()) / secondsPerHour;

    TimelineScale scale;
    scale.plan = tickPlan(room, hours);
    scale.labelWidth = scale.plan.labelStep >= secondsPerHour ? texts.hour : texts.minute;

    const QDateTime firstHour =
        localTime(window.start.date(), QTime(window.start.time().hour(), 0));
    const Labels labels = labelsFor(scale.plan, firstHour.date(), window.end);
    const qint64 first = firstHour.toMSecsSinceEpoch();
    const qint64 step = secondsPerHour / scale.plan.ticksPerHour;
    const qint64 count = firstHour.secsTo(window.end) / step;
    for (qint64 index = 0; index <= count; ++index) {
        const qint64 moment = first + index * step * millisecondsPerSecond;
        const int x = axis.pixelAt(moment);
        if (x < axis.firstPixel())
            continue;
        const bool labelled = index % scale.plan.labelEvery == 0;
        scale.ticks.append(
            {x, tickHeight(scale.plan, index), labelled ? labels.at(moment) : QString()});
    }
    if (window.end == lastSecond(firstHour.date()))
        scale.ticks.append({window.pixelAt(window.end), majorHeight, labels.endText});
    return scale;
}

} // namespace Internal
} // namespace GUI
} // namespace ZorvaneClient
