// SPDX-License-Identifier: MIT
#include "server/KeepRules.h"

#include <algorithm>

#include "server/UtcTime.h"

namespace ZorvaneServer {

namespace {

constexpr std::int64_t growingShare = 8;

} // namespace

bool KeepRules::mustGo(const State &state) const
{
    return (days && state.oldestEndMs < state.nowMs - *days * dayMs) ||
           (bytes && state.archiveBytes > *bytes) || state.freeBytes < keepFreeBytes;
}

std::int64_t KeepRules::roomBytes(std::int64_t diskBytes) const
{
    const std::int64_t room = std::max<std::int64_t>(diskBytes - keepFreeBytes, 0);
    return std::min(room, bytes.value_or(room));
}

SegmentRule SegmentRule::of(int stream, int streams, std::int64_t roomBytes)
{
    const std::int64_t share = roomBytes / (growingShare * std::max(streams, 1));
    return {longestMs * stream / std::max(streams, 1), std::clamp(share, leastBytes, mostBytes)};
}

bool SegmentRule::isDue(std::int64_t startMs, std::int64_t bytes, std::int64_t momentMs) const
{
    return bytes >= largestBytes ||
           (startMs - phaseMs) / longestMs != (momentMs - phaseMs) / longestMs;
}

} // namespace ZorvaneServer
