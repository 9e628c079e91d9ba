// SPDX-License-Identifier: MIT
// The fragment to export: its limits, how it is pulled and moved, and where it begins.
#include "GUI/TimelinePrivate.h"

#include <QDebug>
#include <QPropertyAnimation>

#include <chrono>
#include <cstdlib>
#include <utility>

#include "API/Camera.h"

namespace ZorvaneClient {
namespace GUI {
namespace Internal {

namespace {

using namespace std::chrono_literals;

constexpr int shortestFragmentSeconds = 60;
constexpr int longestFragmentSeconds = 7200;
constexpr int firstFragmentSeconds = 300;

constexpr int handleReachPixels = 12;
constexpr int pressMarginLeftPixels = 9;
constexpr int pressMarginRightPixels = 10;
constexpr int snapReachPixels = 6;

constexpr int minutesPerHour = 60;
constexpr int millisecondsPerMinute = 60000;

constexpr int shortFragmentSeconds = 300;
constexpr int mediumFragmentSeconds = 600;
constexpr double wideViewFactor = 3.0;
constexpr double closeViewFactor = 2.0;
constexpr std::chrono::milliseconds revealDuration = 500ms;

struct SnapGrid {
    int minutes;
    int half;
};

SnapGrid snapGrid(int labelStepSeconds)
{
    if (labelStepSeconds <= 3600)
        return {5, 2};
    if (labelStepSeconds <= 7200)
        return {15, 7};
    return {30, 15};
}

bool isFragmentLength(qint64 seconds)
{
    return seconds >= shortestFragmentSeconds && seconds <= longestFragmentSeconds;
}

bool isFragment(const QDateTime &start, const QDateTime &end)
{
    return !(end < start.addSecs(shortestFragmentSeconds)) &&
           !(start.addSecs(longestFragmentSeconds) < end);
}

bool isWithin(const QDateTime &time, const QDateTime &start, const QDateTime &end)
{
    return start < time && time < end;
}

/// The start of the latest of the cameras' records that begins at or before `before`, looking
/// no further once one is near; a day before `before` if there is none.
QDateTime latestStart(const QMap<API::camera_global_id_t, API::CameraPtr> &cameras, QDate day,
                      const QDateTime &before)
{
    QDateTime best = before.addDays(-1);
    for (const API::CameraPtr &camera : cameras) {
        const QList<API::ArchiveRecord> records = camera->records(day);
        for (const API::ArchiveRecord &record : records) {
            if (!(before < record.start) && best < record.start)
                best = record.start;
            if (!(record.end < before))
                break;
        }
        if (best.secsTo(before) <= firstFragmentSeconds)
            break;
    }
    return best;
}

QPropertyAnimation *animate(Timeline *timeline, const char *property, const QDateTime &from,
                            const QDateTime &to)
{
    auto *animation = new QPropertyAnimation(timeline, property);
    animation->setStartValue(from);
    animation->setEndValue(to);
    animation->setDuration(static_cast<int>(revealDuration.count()));
    return animation;
}

} // namespace

bool TimelinePrivate::isDraggingSelection() const
{
    return draggingStart || draggingEnd || draggingBody;
}

void TimelinePrivate::stopSelectionDrag()
{
    draggingStart = false;
    draggingEnd = false;
    draggingBody = false;
}

void TimelinePrivate::startSelectionDrag(int x)
{
    if (x <= pressMarginLeftPixels || x > width() - pressMarginRightPixels)
        return;
    const int startX = pixelAt(selectionStart);
    const int endX = pixelAt(selectionEnd);
    if (std::abs(x - startX) < handleReachPixels) {
        draggingStart = true;
        selectionAnchor = selectionStart;
    } else if (std::abs(x - endX) < handleReachPixels) {
        draggingEnd = true;
        selectionAnchor = selectionEnd;
    } else if (startX < x && x < endX) {
        draggingBody = true;
        selectionAnchor = timeAt(x);
    }
}

void TimelinePrivate::dragSelection(int x)
{
    if (!selectionMode || !selectionEditable || !isDraggingSelection())
        return;
    QDateTime time = timeAt(x);
    if (!isWithin(time, dayStart(), dayEnd())) {
        time = time < dayEnd() ? dayStart() : dayEnd();
        x = pixelAt(time);
    }
    if (draggingStart) {
        dragStart(time, x);
    } else if (draggingEnd) {
        dragEnd(time, x);
    } else {
        dragBody(time);
    }
    widget->update();
}

void TimelinePrivate::dragStart(const QDateTime &time, int x)
{
    if (!isFragment(time, selectionEnd)) {
        if (!draggingBody)
            selectionAnchor = selectionStart;
        dragBody(time);
        return;
    }
    draggingEnd = false;
    draggingBody = false;
    selectionStart = time;
    const QDateTime snappedStart = snapped(selectionStart);
    if (std::abs(pixelAt(snappedStart) - x) <= snapReachPixels &&
        isFragmentLength(snappedStart.secsTo(selectionEnd)))
        selectionStart = snappedStart;
}

void TimelinePrivate::dragEnd(const QDateTime &time, int x)
{
    if (!isFragment(selectionStart, time)) {
        if (!draggingBody)
            selectionAnchor = selectionEnd;
        dragBody(time);
        return;
    }
    draggingStart = false;
    draggingBody = false;
    selectionEnd = time;
    const QDateTime snappedEnd = snapped(selectionEnd);
    if (std::abs(pixelAt(snappedEnd) - x) <= snapReachPixels &&
        isFragmentLength(selectionStart.secsTo(snappedEnd)))
        selectionEnd = snappedEnd;
}

void TimelinePrivate::dragBody(const QDateTime &time)
{
    draggingBody = true;
    const qint64 delta = selectionAnchor.secsTo(time);
    selectionStart = selectionStart.addSecs(delta);
    selectionEnd = selectionEnd.addSecs(delta);
    selectionAnchor = time;
    normalizeSelection();
}

void TimelinePrivate::normalizeSelection()
{
    const auto keepShortest = [this] {
        selectionEnd = qMax(selectionEnd, selectionStart.addSecs(shortestFragmentSeconds));
    };
    keepShortest();
    selectionEnd = qMin(selectionEnd, selectionStart.addSecs(longestFragmentSeconds));
    if (selectionStart < dayStart()) {
        selectionStart = dayStart();
        keepShortest();
    }
    if (dayEnd() < selectionEnd) {
        selectionEnd = dayEnd();
        selectionStart = qMin(selectionStart, selectionEnd.addSecs(-shortestFragmentSeconds));
    }
}

QDateTime TimelinePrivate::snapped(const QDateTime &time) const
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

void TimelinePrivate::fitSelection(int seconds)
{
    if (selectionStart.date() < date)
        selectionStart = dayStart();
    const int beyondMinute = selectionStart.time().msecsSinceStartOfDay() % millisecondsPerMinute;
    selectionStart = selectionStart.addMSecs(-beyondMinute);
    selectionEnd = selectionStart.addSecs(seconds);
    if (selectionEnd.date() > date) {
        selectionEnd = dayEnd();
        selectionStart = selectionEnd.addSecs(-seconds);
    }
    qDebug() << "Selection start:" << selectionStart << "; end:" << selectionEnd;
}

bool TimelinePrivate::defaultSelection()
{
    const qint64 halfWindow = startValue.secsTo(endValue) / 2;
    selectionStart = startValue.addSecs(halfWindow).addSecs(-firstFragmentSeconds / 2);
    fitSelection(firstFragmentSeconds);

    const QDateTime next = nextRecorded(selectionStart, date);
    if (!(next < selectionStart) && next < selectionEnd)
        return true;
    const QDateTime start = next.date() == date ? next : latestStart(cameras, date, selectionStart);
    if (start.date() != date)
        return false;
    selectionStart = start;
    fitSelection(firstFragmentSeconds);
    return true;
}

bool TimelinePrivate::selectionAtCurrentTime()
{
    selectionStart = currentValue.addSecs(-firstFragmentSeconds / 2);
    fitSelection(firstFragmentSeconds);
    return selectionStart < selectionEnd;
}

void TimelinePrivate::reveal(const QDateTime &from, const QDateTime &to)
{
    qint64 span = from.secsTo(to);
    double factor = span > mediumFragmentSeconds ? closeViewFactor : wideViewFactor;
    span = qMax<qint64>(span, shortFragmentSeconds);
    const QDateTime middle = from.addSecs(span / 2);
    const QDateTime newStart = middle.addSecs(-static_cast<qint64>(span * factor));
    const QDateTime newEnd = newStart.addSecs(static_cast<qint64>(2 * span * factor));

    const bool isWider = newStart.secsTo(newEnd) > startValue.secsTo(endValue);
    if (isWider && isWithin(from, startValue, endValue) && isWithin(to, startValue, endValue))
        return;

    QPropertyAnimation *first = animate(widget, "startValue", startValue, newStart);
    QPropertyAnimation *second = animate(widget, "endValue", endValue, newEnd);
    // They step in the order of their starts. A window that moves on lets its end go ahead, or
    // it would be put in order whenever its start overtakes its end.
    if (startValue < newStart)
        std::swap(first, second);
    first->start(QAbstractAnimation::DeleteWhenStopped);
    second->start(QAbstractAnimation::DeleteWhenStopped);
    dirty = true;
}

} // namespace Internal

bool Timeline::enterSelectionMode(bool fromCurrentTime, bool keepExisting)
{
    if (!d->canExport())
        return false;
    const bool keeps = keepExisting && d->selectionStart.date() == d->date;
    if (!keeps && !(fromCurrentTime ? d->selectionAtCurrentTime() : d->defaultSelection()))
        return false;
    d->selectionMode = true;
    d->reveal(d->selectionStart, d->selectionEnd);
    update();
    return true;
}

void Timeline::leaveSelectionMode()
{
    d->selectionMode = false;
    d->stopSelectionDrag();
    d->overSelection = false;
    d->selectionEditable = true;
    update();
}

QDateTime Timeline::selectionStart() const
{
    return d->selectionStart;
}

QDateTime Timeline::selectionEnd() const
{
    return d->selectionEnd;
}

void Timeline::setSelectionEditable(bool editable)
{
    d->selectionEditable = editable;
}

} // namespace GUI
} // namespace ZorvaneClient
