// SPDX-License-Identifier: MIT
// How the window of the day moves: all at once by a step, or in a short glide.
#include "GUI/Timeline.h"

#include <QPropertyAnimation>

#include <chrono>
#include <utility>

#include "GUI/TimelinePrivate.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

using namespace std::chrono_literals;

constexpr std::chrono::milliseconds glideDuration = 500ms;

QPropertyAnimation *animate(Timeline *timeline, const char *property, const QDateTime &from,
                            const QDateTime &to)
{
    auto *animation = new QPropertyAnimation(timeline, property);
    animation->setStartValue(from);
    animation->setEndValue(to);
    animation->setDuration(static_cast<int>(glideDuration.count()));
    return animation;
}

} // namespace

QDateTime Timeline::startValue() const
{
    return d->startValue;
}

void Timeline::setStartValue(QDateTime value)
{
    d->startValue = value;
    d->clampWindow();
    update();
}

QDateTime Timeline::endValue() const
{
    return d->endValue;
}

void Timeline::setEndValue(QDateTime value)
{
    d->endValue = value;
    d->clampWindow();
    update();
}

void Timeline::zoomIn()
{
    zoomAtCenter(1);
}

void Timeline::zoomOut()
{
    zoomAtCenter(-1);
}

void Timeline::zoom(int level)
{
    // A window that stayed as it was would do so for ever.
    bool moves = true;
    if (level > d->zoomLevel) {
        while (moves && level > d->zoomLevel)
            moves = zoomAtCenter(1);
    } else {
        while (moves && level < d->zoomLevel)
            moves = zoomAtCenter(-1);
    }
}

bool Timeline::zoomAtCenter(int direction)
{
    const bool moves = d->zoomStep(direction, d->window().timeAt(width() / 2));
    if (moves)
        emit zoomed(d->zoomLevel);
    redrawRecords();
    return moves;
}

void Timeline::scrollLeft()
{
    scroll(Internal::wheelNotch);
}

void Timeline::scrollRight()
{
    scroll(-Internal::wheelNotch);
}

void Timeline::scroll(int delta)
{
    d->scrollBy(delta);
    redrawRecords();
}

void Timeline::changeDate(QDate newDate)
{
    if (newDate == d->date || !newDate.isValid())
        return;
    d->date = newDate;
    d->startValue = Internal::localTime(newDate, d->startValue.time());
    d->endValue = Internal::localTime(newDate, d->endValue.time());
    // The clock of the new day can skip the times of the old.
    d->clampWindow();
    updateCameras();
    redrawRecords();
}

void Timeline::reveal(const QDateTime &time)
{
    Internal::DayWindow window = d->window();
    if (window.surrounds(time))
        return;
    window.pan(window.pixelAt(time), width() / 2);
    if (d->setWindow(window))
        redrawRecords();
}

void Timeline::glideTo(const Internal::DayWindow &window)
{
    if (window.start == d->startValue && window.end == d->endValue)
        return;
    QPropertyAnimation *first = animate(this, "startValue", d->startValue, window.start);
    QPropertyAnimation *second = animate(this, "endValue", d->endValue, window.end);
    // They step in the order of their starts. A window that moves on lets its end go ahead, or
    // it would be put in order whenever its start overtakes its end.
    if (d->startValue < window.start)
        std::swap(first, second);
    first->start(QAbstractAnimation::DeleteWhenStopped);
    second->start(QAbstractAnimation::DeleteWhenStopped);
    // The steps on the way are cheap: the bars stand still until the window has arrived.
    connect(second, &QPropertyAnimation::finished, this, &Timeline::redrawRecords);
    redrawRecords();
}

} // namespace GUI
} // namespace ZorvaneClient
