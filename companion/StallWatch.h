// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>

namespace ZorvaneClient {
namespace Companion {

/// Tells when a stream has brought nothing for too long. Times are those of the caller's clock.
class StallWatch
{
public:
    using Time = std::chrono::microseconds;

    explicit StallWatch(Time longest) : limit(longest) {}

    void restart(Time now) { since = now; }
    /// `bytes` is how many have come since the stream began.
    void look(int64_t bytes, Time now)
    {
        if (bytes > seen)
            restart(now);
        seen = bytes;
    }
    bool isOver(Time now) const { return now - since >= limit; }

private:
    const Time limit;
    Time since{0};
    int64_t seen = 0;
};

} // namespace Companion
} // namespace ZorvaneClient
