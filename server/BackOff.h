// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <chrono>

namespace ZorvaneServer {

/// How long to wait before a camera is tried again: from 1 s on twice as long each time.
class BackOff
{
public:
    static constexpr std::chrono::seconds shortest{1};
    static constexpr std::chrono::seconds longest{30};

    std::chrono::seconds next()
    {
        const std::chrono::seconds wait = upcoming;
        upcoming = std::min(2 * upcoming, longest);
        return wait;
    }
    void reset() { upcoming = shortest; }

private:
    std::chrono::seconds upcoming = shortest;
};

} // namespace ZorvaneServer
