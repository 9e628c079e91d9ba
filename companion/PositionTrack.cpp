// SPDX-License-Identifier: MIT
#include "companion/PositionTrack.h"

#include <algorithm>

namespace ZorvaneClient {
namespace Companion {

namespace {

using Duration = PositionTrack::Duration;

/// A longer step is only believed when as much real time has passed.
constexpr auto maxStep = Duration(10'000);
constexpr auto passedTolerance = Duration(2'000);
/// Taken instead of a step that isn't believed.
constexpr auto ordinaryStep = Duration(40);

} // namespace

void PositionTrack::advance(int64_t stamp, int64_t shownAt, std::chrono::microseconds elapsed,
                            Duration dropped)
{
    if (!last) {
        currentOffset = dropped.count() - shownAt;
    } else {
        const Duration passed = std::chrono::floor<Duration>(elapsed - last->elapsed) + dropped;
        const int64_t longest = std::max(maxStep, passed + passedTolerance).count();
        const int64_t step = stamp - last->stamp;
        if (step < 0 || step > longest)
            currentOffset += ordinaryStep.count() - step;
    }
    last = {stamp, elapsed};
}

} // namespace Companion
} // namespace ZorvaneClient
