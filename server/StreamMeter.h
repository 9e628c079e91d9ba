// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <mutex>
#include <optional>

#include "server/MediaPacket.h"

namespace ZorvaneServer {

/// What comes of one stream by now. Safe to use from any thread.
class StreamMeter
{
public:
    using Moment = std::chrono::microseconds; ///< of the clock that only goes on

    struct Reading {
        std::optional<std::int64_t> connectedMs; ///< since the epoch; nothing without connection
        double picturesPerSecond = 0;
        double kilobitsPerSecond = 0;
    };

    /// Null when its connection has ended.
    void take(const MediaPacket *packet, Moment now, std::int64_t nowMs);
    /// Over the last ten whole seconds of the connection.
    Reading read(Moment now) const;

private:
    struct Second {
        std::int64_t number = -1;
        int pictures = 0;
        std::int64_t bytes = 0;
    };
    static constexpr std::int64_t meanOf = 10;

    mutable std::mutex mutex;
    std::optional<std::int64_t> connectedMs;
    std::int64_t firstSecond = 0; ///< that is whole
    std::array<Second, meanOf + 1> seconds;
};

} // namespace ZorvaneServer
