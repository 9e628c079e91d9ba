// SPDX-License-Identifier: MIT
#include "service/Pace.h"

#include <algorithm>

namespace ZorvaneService {

namespace {

/// A stream whose receiver fell back further goes on from where it was.
constexpr std::int64_t largestLagMs = 3000;
/// Pictures come so much before their time: recorders read ahead.
constexpr std::int64_t leadMs = 500;

} // namespace

std::int64_t Pace::dueMs(std::int64_t momentMs)
{
    const std::int64_t playedMs = std::max<std::int64_t>(momentMs - firstMs, 0);
    const std::int64_t playedAtMs = beganMs + playedMs / speed - leadMs;
    const std::int64_t lagMs = nowMs() - playedAtMs;
    if (lagMs > largestLagMs)
        beganMs += lagMs;
    return std::max(playedAtMs, momentMs + 1);
}

} // namespace ZorvaneService
