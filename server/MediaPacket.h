// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>

#include "server/StreamFormat.h"

namespace ZorvaneServer {

enum class Track : std::uint8_t { Video = 1, Sound = 2 };

/// One picture, of units with four-byte lengths, or one frame of sound. It never changes, so
/// the archive and all who watch share it.
struct MediaPacket {
    Track track = Track::Video;
    bool isKey = false;        ///< a picture that needs no other one
    std::uint32_t run = 0;     ///< moments of different runs don't follow from each other
    std::int64_t momentMs = 0; ///< when it is shown, since the epoch
    FormatPtr format;
    Bytes data;

    bool isKeyPicture() const { return isKey && track == Track::Video; }
};

using PacketPtr = std::shared_ptr<const MediaPacket>;

} // namespace ZorvaneServer
