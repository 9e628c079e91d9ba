// SPDX-License-Identifier: MIT
#include "GUI/Fragment.h"

#include <cstdlib>

namespace ZorvaneClient {
namespace GUI {
namespace Internal {

namespace {

constexpr int shortestSeconds = 60;
constexpr int longestSeconds = 7200;

constexpr int handleReachPixels = 11;

constexpr int minutesPerHour = 60;
constexpr int millisecondsPerMinute = 60000;

constexpr int mediumSeconds = 600;
constexpr double wideViewFactor = 3.0;
constexpr double closeViewFactor = 2.0;

/// The greatest classes of labels with which handles snap closer than to half hours.
constexpr int closeLabelStep = 3600;
constexpr int mediumLabelStep = 7200;

struct SnapGrid {
    int minutes;
    int half;
};

SnapGrid snapGrid(int labelStep)
{
    if (labelStep <= closeLabelStep)
        return {5, 2};
    if (labelStep <= mediumLabelStep)
        return {15, 7};
    return {30, 15};
}

} // namespace

Fragment Fragment::from(const QDateTime &start, const DayWindow &window)
{
    QDateTime begin = start.date() < window.date ? window.dayStart() : start;
    const int beyondMinute = begin.time().msecsSinceStartOfDay() % millisecondsPerMinute;
    begin = begin.addMSecs(-beyondMinute);
    const QDateTime end = begin.addSecs(firstSeconds);
    if (end.date() > window.date)
        return {window.dayEnd().addSecs(-firstSeconds), window.dayEnd()};
    return {begin, end};
}

bool Fragment::isAllowed() const
{
    const qint64 seconds = start.secsTo(end);
    return seconds >= shortestSeconds && seconds <= longestSeconds;
}

Fragment Fragment::with(FragmentPart handle, const QDateTime &time) const
{
    return handle == FragmentPart::Start ? Fragment{time, end} : Fragment{start, time};
}

FragmentPart Fragment::partAt(int x, const DayWindow &window) const
{
    const int startX = window.pixelAt(start);
    const int endX = window.pixelAt(end);
    if (std::abs(x - startX) <= handleReachPixels)
        return FragmentPart::Start;
    if (std::abs(x - endX) <= handleReachPixels)
        return FragmentPart::End;
    return startX < x && x < endX ? FragmentPart::Body : FragmentPart::None;
}

void Fragment::move(qint64 seconds, const DayWindow &window)
{
    start = start.addSecs(seconds);
    end = end.addSecs(seconds);
    end = qBound(start.addSecs(shortestSeconds), end, start.addSecs(longestSeconds));
    if (start < window.dayStart()) {
        start = window.dayStart();
        end = qMax(end, start.addSecs(shortestSeconds));
    }
    if (window.dayEnd() < end) {
        end = window.dayEnd();
        start = qMin(start, end.addSecs(-shortestSeconds));
    }
}

DayWindow Fragment::viewFrom(const DayWindow &present) const
{
    const qint64 length = start.secsTo(end);
    const double factor = length > mediumSeconds ? closeViewFactor : wideViewFactor;
    const qint64 span = qMax<qint64>(length, firstSeconds);
    DayWindow view = present;
    view.start = start.addSecs(span / 2).addSecs(-static_cast<qint64>(span * factor));
    view.end = view.start.addSecs(static_cast<qint64>(2 * span * factor));

    const bool isCloser = present.seconds() < view.seconds();
    return isCloser && present.surrounds(start) && present.surrounds(end) ? present : view;
}

QDateTime snapped(const QDateTime &time, int labelStep)
{
    const SnapGrid grid = snapGrid(labelStep);
    const QTime clock = time.time();
    int minute = (clock.minute() + grid.half) / grid.minutes * grid.minutes;
    int hour = clock.hour();
    if (minute >= minutesPerHour) {
        ++hour;
        minute -= minutesPerHour;
    }
    const QTime target(hour, minute);
    if (!target.isValid())
        return QDateTime();
    // In the hour that the clock shows twice the near one is meant.
    const QDateTime near = time.addMSecs(clock.msecsTo(target));
    return near.time() == target ? near : QDateTime(time.date(), target);
}

} // namespace Internal
} // namespace GUI
} // namespace ZorvaneClient
