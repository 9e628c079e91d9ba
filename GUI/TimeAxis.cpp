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
    , scaleWidth(width - 2 * timelineMargin)
{
}

int TimeAxis::firstPixel() const
{
    return timelineMargin;
}

int TimeAxis::lastPixel() const
{
    return timelineMargin + scaleWidth;
}

int TimeAxis::pixelAfter(qint64 seconds) const
{
    const double fraction = static_cast<double>(seconds) / static_cast<double>(totalSeconds);
    return truncated(scaleWidth * fraction) + timelineMargin;
}

int TimeAxis::pixelAt(qint64 moment) const
{
    return pixelAfter((moment - startMoment) / millisecondsPerSecond);
}

qint64 TimeAxis::firstMomentAt(int pixel) const
{
    if (scaleWidth <= 0 || totalSeconds <= 0)
        return std::numeric_limits<qint64>::max();
    const double share = static_cast<double>(pixel - timelineMargin) / scaleWidth;
    auto seconds = static_cast<qint64>(std::ceil(share * static_cast<double>(totalSeconds)));
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
