// SPDX-License-Identifier: MIT
#include "GUI/DayWindow.h"

#include <cmath>

namespace ZorvaneClient {
namespace GUI {
namespace Internal {

namespace {

constexpr int widestLevel = 0;
constexpr int tightestLevel = 100;
constexpr int tightestLevelSeconds = 600;
constexpr double secondsPerLevel = 858.0;
constexpr double levelsPerStep = 5.0;
/// A window below this isn't narrowed any more.
constexpr int narrowestStepSeconds = 4790;

/// A scroll step of a window as long as the day.
constexpr double dayScrollSeconds = 3600.0;
constexpr double dayMilliseconds = 86'399'000.0; // from its first second to its last

int stepShare(qint64 side, qint64 total)
{
    const double share = static_cast<double>(side) / static_cast<double>(total);
    return truncated(share * secondsPerLevel * levelsPerStep);
}

int levelOf(qint64 windowSeconds)
{
    const double levels = static_cast<double>(windowSeconds - tightestLevelSeconds);
    return qMax(widestLevel, tightestLevel - truncated(std::round(levels / secondsPerLevel)));
}

} // namespace

QDateTime localTime(QDate date, QTime time)
{
    const QDateTime result(date, time);
    return result.isValid() ? result : QDateTime(date.addDays(-1), time).addDays(1);
}

QDateTime firstSecond(QDate date)
{
    return localTime(date, QTime(0, 0));
}

QDateTime lastSecond(QDate date)
{
    return localTime(date, QTime(23, 59, 59));
}

QDateTime DayWindow::dayStart() const
{
    return firstSecond(date);
}

QDateTime DayWindow::dayEnd() const
{
    return lastSecond(date);
}

bool DayWindow::isWholeDay() const
{
    return start == dayStart() && end == dayEnd();
}

qint64 DayWindow::seconds() const
{
    return start.secsTo(end);
}

bool DayWindow::surrounds(const QDateTime &time) const
{
    return start < time && time < end;
}

TimeAxis DayWindow::axis() const
{
    return TimeAxis(start, end, width);
}

bool DayWindow::isOnScale(int x) const
{
    return axis().holds(x);
}

QDateTime DayWindow::timeAt(int x) const
{
    return start.addSecs(axis().secondsAt(x));
}

int DayWindow::pixelAt(const QDateTime &time) const
{
    return axis().pixelAfter(start.secsTo(time));
}

void DayWindow::clamp()
{
    if (start.date() < date)
        start = dayStart();
    if (end.date() > date)
        end = dayEnd();
    if (!(start < end)) {
        start = dayStart();
        end = dayEnd();
    }
}

int DayWindow::zoom(int direction, const QDateTime &center)
{
    if (direction < 0 && isWholeDay())
        return widestLevel;
    const qint64 total = seconds();
    if (direction > 0 && total < narrowestStepSeconds)
        return tightestLevel;
    const int sign = direction > 0 ? 1 : -1;
    const int left = sign * stepShare(start.secsTo(center), total);
    const int right = sign * stepShare(center.secsTo(end), total);
    start = start.addSecs(left);
    end = end.addSecs(-right);
    clamp();
    return levelOf(seconds());
}

QDateTime DayWindow::zoomCenterAt(int x) const
{
    QDateTime center = timeAt(x);
    if (center.date() < date)
        center = dayStart();
    else if (center.date() > date)
        center = localTime(date, QTime(23, 59));
    if (x <= timelineMargin)
        center = firstSecond(center.date());
    if (x >= width - 2 * timelineMargin)
        center = lastSecond(center.date());
    return center;
}

void DayWindow::scroll(int delta)
{
    const double windowShare = static_cast<double>(start.msecsTo(end)) / dayMilliseconds;
    const int shift = truncated(windowShare * dayScrollSeconds);
    if (delta < wheelNotch)
        moveBack(shift);
    else
        moveOn(shift);
}

void DayWindow::pan(int fromX, int toX)
{
    const qint64 delta = timeAt(toX).secsTo(timeAt(fromX));
    if (delta < 1)
        moveBack(-delta);
    else
        moveOn(delta);
}

void DayWindow::moveOn(qint64 seconds)
{
    const qint64 move = qMin(end.secsTo(dayEnd()), seconds);
    start = start.addSecs(move);
    end = end.addSecs(move);
}

void DayWindow::moveBack(qint64 seconds)
{
    const qint64 move = qMin(dayStart().secsTo(start), seconds);
    start = start.addSecs(-move);
    end = end.addSecs(-move);
}

} // namespace Internal
} // namespace GUI
} // namespace ZorvaneClient
