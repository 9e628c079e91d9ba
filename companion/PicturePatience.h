// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <optional>

namespace ZorvaneClient {
namespace Companion {

/// How long a stream may go on without pictures. Times are playing time since the start.
class PicturePatience
{
public:
    using Time = std::chrono::microseconds;

    /// The decoder got a packet, gave a picture.
    void gotPacket(Time now) { packetSince = packetSince.value_or(now); }
    void gotPicture(Time now);
    /// The picture could not be shown; none could since `lastShown`.
    void lostPicture(Time lastShown) { packetSince = packetSince.value_or(lastShown); }

    bool isOver(Time now, bool hasShown) const;

private:
    std::optional<Time> packetSince; ///< first packet that no picture came out of yet
    Time lastPicture{0};
};

} // namespace Companion
} // namespace ZorvaneClient
