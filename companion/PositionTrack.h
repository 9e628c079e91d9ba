// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <chrono>
#include <cstdint>
#include <optional>

namespace ZorvaneClient {
namespace Companion {

/// Turns the stream's own time stamps, in milliseconds, into the position since the stream began.
/// The position never goes back, and doesn't follow time stamps that jump without reason.
class PositionTrack
{
public:
    using Duration = std::chrono::milliseconds;

    /// Goes on to the packet with that decoding time, which comes at `elapsed`, pauses counted.
    /// A stream may jump as far as the time since the packet before and what was `dropped`
    /// between. The first packet, shown at `shownAt`, gets the position `dropped`.
    void advance(int64_t stamp, int64_t shownAt, std::chrono::microseconds elapsed,
                 Duration dropped);

    /// What is to be added to a time stamp for its position. Any thread may ask.
    int64_t offset() const { return currentOffset; }

private:
    struct Packet {
        int64_t stamp;
        std::chrono::microseconds elapsed;
    };

    std::optional<Packet> last;
    std::atomic<int64_t> currentOffset{0};
};

} // namespace Companion
} // namespace ZorvaneClient
