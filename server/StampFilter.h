// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <deque>
#include <optional>

namespace ZorvaneServer {

/// Makes durations between pictures of a camera's time stamps, whatever those do: jump by an
/// hour, wrap, repeat, stand still or run ten times too fast.
class StampFilter
{
public:
    using Duration = std::chrono::microseconds;

    /// A jump that is longer isn't believed, unless that much time went by.
    static constexpr Duration longestStep = std::chrono::seconds(2);

    struct Step {
        Duration length{0};
        bool isGap = false;   ///< nothing came for so long
        bool isGuess = false; ///< not the camera's: its stamps run too fast or too slowly
    };

    /// The time from the picture before; `now` is when this one came, by a clock that only runs.
    Step take(Duration stamp, Duration now);

private:
    struct Sample {
        Duration now;
        Duration told; ///< by the stamps, up to then
    };

    Step judge(Duration told, Duration lived);
    void remember(Duration now);
    double rateSince(Duration age) const;
    bool isNonsense() const;

    std::optional<Duration> lastStamp;
    Duration lastNow{0};
    Duration usual = std::chrono::milliseconds(40);
    Duration toldSum{0};
    bool wasBelieved = true;
    std::deque<Sample> samples; ///< of the last seconds
};

} // namespace ZorvaneServer
