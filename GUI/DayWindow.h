// SPDX-License-Identifier: MIT
#pragma once

#include <QDate>
#include <QDateTime>
#include <QTime>

#include "GUI/TimeAxis.h"

namespace ZorvaneClient {
namespace GUI {
namespace Internal {

/// `time` of `date`; when the clock skips it on that day, the moment that it shows instead.
QDateTime localTime(QDate date, QTime time);
QDateTime firstSecond(QDate date); ///< 00:00:00
QDateTime lastSecond(QDate date);  ///< 23:59:59

/// What one notch turns a mouse's wheel, in the unit of wheel events: 15 degrees of 8 parts each.
constexpr int wheelNotch = 120;

/// What a strip of `width` pixels shows of one day: from `start` at its left margin to `end` at
/// its right one. Pixels count from the strip's left edge, times are local times.
struct DayWindow {
    QDate date;
    QDateTime start;
    QDateTime end;
    int width = 0;

    QDateTime dayStart() const;
    QDateTime dayEnd() const;
    bool isWholeDay() const;
    qint64 seconds() const;
    /// Strictly between the two ends.
    bool surrounds(const QDateTime &time) const;

    TimeAxis axis() const;
    /// Between the margins.
    bool isOnScale(int x) const;
    QDateTime timeAt(int x) const;
    int pixelAt(const QDateTime &time) const;

    /// Puts the ends back into the day, and shows all of it if they are not in order.
    void clamp();
    /// A step closer if `direction` is above 0, else a wider one; what lies at `center` stays
    /// there. At its limit the window stays as it is. Returns the zoom level: 0 for the whole
    /// day, 100 for the tightest window.
    int zoom(int direction, const QDateTime &center);
    /// What the wheel at `x` zooms about: at the margins the ends of the day, on the right from
    /// two of them on.
    QDateTime zoomCenterAt(int x) const;
    /// A step on for a delta of a notch or more, else a step back, as far as the day goes.
    void scroll(int delta);
    /// Moves what lies at `fromX` to `toX`, as far as the day goes.
    void pan(int fromX, int toX);

private:
    void moveOn(qint64 seconds);
    void moveBack(qint64 seconds);
};

} // namespace Internal
} // namespace GUI
} // namespace ZorvaneClient
