// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <deque>
#include <memory>
#include <mutex>
#include <vector>

#include "server/MediaPacket.h"
#include "server/SoundConverter.h"

namespace ZorvaneServer {

/// A live stream's sound as MP3, which is made once for all who watch: whoever comes to a packet
/// first makes it, on its own thread.
class SharedSound
{
public:
    using Frames = std::shared_ptr<const std::vector<SoundConverter::Frame>>;

    /// What came of the packet, which has that number in its ring. Null where it was passed over,
    /// or is older than what is kept.
    Frames of(std::uint64_t number, const MediaPacket &packet);

private:
    /// Some 10 s of common packets; a receiver that is further behind misses sound.
    static constexpr std::size_t mostKept = 500;
    struct Made {
        std::uint64_t number;
        Frames frames;
    };

    Frames make(const MediaPacket &packet);

    std::mutex mutex;
    FormatPtr format;
    std::unique_ptr<SoundConverter> converter;
    std::deque<Made> kept; ///< by number
};

} // namespace ZorvaneServer
