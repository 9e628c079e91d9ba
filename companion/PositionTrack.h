// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>

namespace ZorvaneClient {
namespace Companion {

/// Turns the stream's own time stamps into the position since the stream began. The position
/// never goes back, and doesn't follow time stamps that jump without reason.
class PositionTrack
{
public:
    using Duration = std::chrono::milliseconds;

    /// Goes on to the packet with that decoding time. `passed` is the real time since the last
    /// packet and the length of what was dropped between: a stream may jump that far ahead. The
    /// first packet, shown at `shownAt`, gets the position `passed`.
    void advance(int64_t stamp, int64_t shownAt, Duration passed);

    /// What is to be added to a time stamp for its position. Any thread may ask.
    int64_t offset() const { return currentOffset; }

private:
    bool started = false;
    int64_t lastStamp = 0;
    std::atomic<int64_t> currentOffset{0};
};

} // namespace Companion
} // namespace ZorvaneClient
