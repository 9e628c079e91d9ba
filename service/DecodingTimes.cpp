// SPDX-License-Identifier: MIT
#include "service/DecodingTimes.h"

#include <algorithm>
#include <iterator>

namespace ZorvaneService {

std::int64_t DecodingTimes::place(std::int64_t shownMs)
{
    if (latest.empty() || shownMs - *latest.rbegin() > farthestMs ||
        *latest.rbegin() - shownMs > farthestMs) {
        latest.clear();
        lastMs = shownMs;
    }
    const auto later = std::distance(latest.upper_bound(shownMs), latest.end());
    waiting = std::max(waiting, static_cast<std::size_t>(later));
    latest.insert(shownMs);
    while (latest.size() > waiting + 1)
        latest.erase(latest.begin());
    lastMs = std::max(lastMs, *latest.begin());
    return lastMs;
}

} // namespace ZorvaneService
