// SPDX-License-Identifier: MIT
#include "GUI/TimelinePrivate.h"

#include <QTime>

#include <algorithm>
#include <cmath>

#include "API/Camera.h"
#include "App/Environment.h"
#include "GUI/IconPixmap.h"
#include "GUI/TimelineTooltip.h"

namespace ZorvaneClient {
namespace GUI {
namespace Internal {

namespace {

constexpr int tightestLevel = 100;
constexpr double secondsPerLevel = 858.0;
constexpr double levelsPerStep = 5.0;
constexpr int tightestLevelSeconds = 600;
/// A window below this isn't narrowed any more.
constexpr int narrowestStepSeconds = 4790;

/// The wheel's notch.
constexpr int forwardDelta = 120;
/// A scroll step of a window as long as the day.
constexpr double dayScrollSeconds = 3600.0;

QTime firstSecond()
{
    return QTime(0, 0);
}

QTime lastSecond()
{
    return QTime(23, 59, 59);
}

/// Toward zero; what no strip can show stays within an int, with room to add to it.
int truncated(double value)
{
    constexpr double limit = 1e9;
    if (std::isnan(value))
        return 0;
    return static_cast<int>(std::clamp(value, -limit, limit));
}

int stepShare(qint64 side, qint64 total)
{
    const double share = static_cast<double>(side) / static_cast<double>(total);
    return truncated(share * secondsPerLevel * levelsPerStep);
}

int levelOf(qint64 windowSeconds)
{
    const double levels = static_cast<double>(windowSeconds - tightestLevelSeconds);
    return qMax(0, tightestLevel - truncated(std::round(levels / secondsPerLevel)));
}

} // namespace

QDateTime localTime(QDate date, QTime time)
{
    const QDateTime result(date, time);
    return result.isValid() ? result : QDateTime(date.addDays(-1), time).addDays(1);
}

TimelinePrivate::TimelinePrivate(Timeline *owner, QDate day)
    : currentValue(App::Environment::now())
    , date(day)
    , startValue(dayStart())
    , endValue(dayEnd())
    , selectionStart(dayStart())
    , selectionEnd(dayStart())
    , selectionAnchor(dayStart())
    , widget(owner)
    , recordsImage(owner->size(), QImage::Format_ARGB32)
    , selectionStartImage(iconPixmap(QStringLiteral(":icons/selection-start.png")).toImage())
    , selectionEndImage(iconPixmap(QStringLiteral(":icons/selection-end.png")).toImage())
    , footerImage(QStringLiteral(":icons/timeline_footer.png"))
    , tooltip(new TimelineTooltip)
{
    recordsImage.fill(Qt::transparent);
    // It lies over the strip's upper edge, where it would take the mouse away and be hidden for it.
    tooltip->setWindowFlag(Qt::WindowTransparentForInput);
}

TimelinePrivate::~TimelinePrivate()
{
    delete tooltip;
}

int TimelinePrivate::width() const
{
    return widget->width();
}

QDateTime TimelinePrivate::dayStart() const
{
    return localTime(date, firstSecond());
}

QDateTime TimelinePrivate::dayEnd() const
{
    return localTime(date, lastSecond());
}

QDateTime TimelinePrivate::timeAt(int x) const
{
    const int scaleWidth = width() - 2 * timelineMargin;
    if (scaleWidth == 0)
        return startValue;
    const double fraction =
        static_cast<double>(x - timelineMargin) / static_cast<double>(scaleWidth);
    const int windowSeconds = static_cast<int>(startValue.secsTo(endValue));
    return startValue.addSecs(truncated(windowSeconds * fraction));
}

int TimelinePrivate::pixelAt(const QDateTime &time) const
{
    const double windowSeconds = static_cast<double>(startValue.secsTo(endValue));
    const double share = static_cast<double>(startValue.secsTo(time)) / windowSeconds;
    return truncated((width() - 2 * timelineMargin) * share) + timelineMargin;
}

qint64 TimelinePrivate::secondsBetween(int fromX, int toX) const
{
    return timeAt(fromX).secsTo(timeAt(toX));
}

bool TimelinePrivate::isWholeDay() const
{
    return startValue == dayStart() && endValue == dayEnd();
}

qint64 TimelinePrivate::secondsBeforeWindow() const
{
    return dayStart().secsTo(startValue);
}

qint64 TimelinePrivate::secondsAfterWindow() const
{
    return endValue.secsTo(dayEnd());
}

void TimelinePrivate::moveWindow(qint64 seconds)
{
    startValue = startValue.addSecs(seconds);
    endValue = endValue.addSecs(seconds);
}

void TimelinePrivate::clampWindow()
{
    if (startValue.date() < date)
        startValue = dayStart();
    if (endValue.date() > date)
        endValue = dayEnd();
    if (!(startValue < endValue)) {
        startValue = dayStart();
        endValue = dayEnd();
    }
}

bool TimelinePrivate::zoomStep(int direction, const QDateTime &center)
{
    const qint64 total = startValue.secsTo(endValue);
    if (direction < 0 && isWholeDay()) {
        zoomLevel = 0;
        return false;
    }
    if (direction > 0 && total < narrowestStepSeconds) {
        zoomLevel = tightestLevel;
        return false;
    }
    const int sign = direction > 0 ? 1 : -1;
    const int left = sign * stepShare(startValue.secsTo(center), total);
    const int right = sign * stepShare(center.secsTo(endValue), total);
    startValue = startValue.addSecs(left);
    endValue = endValue.addSecs(-right);
    clampWindow();
    zoomLevel = levelOf(startValue.secsTo(endValue));
    return true;
}

void TimelinePrivate::scrollBy(int delta)
{
    const double dayMilliseconds = firstSecond().msecsTo(lastSecond());
    const double windowShare = static_cast<double>(startValue.msecsTo(endValue)) / dayMilliseconds;
    const qint64 shift = truncated(windowShare * dayScrollSeconds);
    if (delta < forwardDelta) {
        moveWindow(-qMin(secondsBeforeWindow(), shift));
    } else {
        moveWindow(qMin(secondsAfterWindow(), shift));
    }
}

bool TimelinePrivate::pan(int x)
{
    const qint64 delta = secondsBetween(x, lastX);
    const qint64 move =
        delta < 1 ? -qMin(secondsBeforeWindow(), -delta) : qMin(secondsAfterWindow(), delta);
    lastX = x;
    if (move == 0)
        return false;
    moveWindow(move);
    return true;
}

API::CameraPtr TimelinePrivate::activeCamera() const
{
    return cameras.value(activeCameraId);
}

bool TimelinePrivate::canExport() const
{
    const API::CameraPtr camera = activeCamera();
    return camera && camera->kind() == API::LocalCamera && camera->hasRecords(currentValue.date());
}

bool TimelinePrivate::hasVisibleRecords() const
{
    const QDate day = currentValue.date();
    return std::any_of(cameras.begin(), cameras.end(), [day](const API::CameraPtr &camera) {
        return camera->isArchiveShared() && camera->hasRecords(day);
    });
}

} // namespace Internal
} // namespace GUI
} // namespace ZorvaneClient
