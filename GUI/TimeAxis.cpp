// SPDX-License-Identifier: MIT
#include "GUI/TimeAxis.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace ZorvaneClient {
namespace GUI {
namespace Internal {

namespace {

constexpr qint64 millisecondsPerSecond = 1000;

} // namespace

int truncated(double value)
{
    constexpr double limit = 1e9;
    if (std::isnan(value))
        return 0;
    return static_cast<int>(std::clamp(value, -limit, limit));
}

TimeAxis::TimeAxis(const QDateTime &start, const QDateTime &end, int width)
    : startMoment(start.toMSecsSinceEpoch())
    , totalSeconds(start.secsTo(end))
    , scalePixels(width - 2 * timelineMargin)
{
}

int TimeAxis::firstPixel() const
{
    return timelineMargin;
}

int TimeAxis::lastPixel() const
{
    return timelineMargin + scalePixels;
}

int TimeAxis::scaleWidth() const
{
    return scalePixels;
}

bool TimeAxis::holds(int pixel) const
{
    return pixel >= firstPixel() && pixel <= lastPixel();
}

int TimeAxis::pixelAfter(qint64 seconds) const
{
    const double fraction = static_cast<double>(seconds) / static_cast<double>(totalSeconds);
    return truncated(scalePixels * fraction) + timelineMargin;
}

int TimeAxis::pixelAt(qint64 moment) const
{
    return pixelAfter((moment - startMoment) / millisecondsPerSecond);
}

double TimeAxis::exactSecondsAt(int pixel) const
{
    const double fraction = static_cast<double>(pixel - timelineMargin) / scalePixels;
    return static_cast<double>(totalSeconds) * fraction;
}

int TimeAxis::secondsAt(int pixel) const
{
    return scalePixels == 0 ? 0 : truncated(exactSecondsAt(pixel));
}

qint64 TimeAxis::firstMomentAt(int pixel) const
{
    if (scalePixels <= 0 || totalSeconds <= 0)
        return std::numeric_limits<qint64>::max();
    auto seconds = static_cast<qint64>(std::ceil(exactSecondsAt(pixel)));
    // The way back is rounded, too.
    while (pixelAfter(seconds) < pixel)
        ++seconds;
    while (pixelAfter(seconds - 1) >= pixel)
        --seconds;
    return startMoment + seconds * millisecondsPerSecond;
}

} // namespace Internal
} // namespace GUI
} // namespace ZorvaneClient
