// SPDX-License-Identifier: MIT
#include "companion/TimeLines.h"

#include <algorithm>

namespace ZorvaneClient {
namespace Companion {

namespace {

using std::chrono::milliseconds;

/// Times go out with frames, and also without when those come slowly.
constexpr auto intervalOfFrames = milliseconds(120);
constexpr auto intervalAlone = milliseconds(200);
constexpr auto minPatience = milliseconds(10);

} // namespace

std::optional<milliseconds> TimeLines::next(Time position, Time now, Beside beside)
{
    const Time interval = beside == Beside::Frame ? intervalOfFrames : intervalAlone;
    const auto rounded = std::chrono::floor<milliseconds>(position);
    if (toldPosition && (rounded <= *toldPosition || now - lastTold < interval))
        return std::nullopt;
    toldPosition = rounded;
    lastTold = now;
    return rounded;
}

TimeLines::Time TimeLines::due(Time now) const
{
    return std::max<Time>(lastTold + intervalAlone, now + minPatience);
}

} // namespace Companion
} // namespace ZorvaneClient
