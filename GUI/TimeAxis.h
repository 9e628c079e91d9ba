// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>

namespace ZorvaneClient {
namespace GUI {
namespace Internal {

/// Left and right of the scale, in pixels.
constexpr int timelineMargin = 15;

/// Toward zero; what no strip can show stays within an int, with room to add to it.
int truncated(double value);

/// Where moments lie on a strip of `width` pixels, from the left to the right margin. Moments
/// are milliseconds since the epoch: with local times each step would ask the time zone.
class TimeAxis
{
public:
    TimeAxis(const QDateTime &start, const QDateTime &end, int width);

    /// The pixels of the two ends.
    int firstPixel() const;
    int lastPixel() const;
    /// From one to the other; 0 or less on a strip that is all margin.
    int scaleWidth() const;
    /// Between the margins.
    bool holds(int pixel) const;

    int pixelAt(qint64 moment) const;
    /// The pixel of the moment that many seconds after the start.
    int pixelAfter(qint64 seconds) const;
    /// The way back: how many whole seconds after the start `pixel` lies.
    int secondsAt(int pixel) const;
    /// The first moment that lies on `pixel` or to the right of it; the end of time if there
    /// is none.
    qint64 firstMomentAt(int pixel) const;

private:
    double exactSecondsAt(int pixel) const;

    qint64 startMoment;
    qint64 totalSeconds;
    int scalePixels;
};

} // namespace Internal
} // namespace GUI
} // namespace ZorvaneClient
