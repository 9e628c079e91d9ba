// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>

#include "service/Bytes.h"
#include "service/MediaFormat.h"

namespace ZorvaneService {

/// A coded picture or a frame of sound.
struct MediaPacket {
    bool isPicture = false;
    bool keyFrame = false;
    std::int64_t momentMs = 0; ///< since the epoch
    /// Of a picture, each unit after its length in four bytes; see unitsAfterStartCodes().
    Bytes data;
    /// The same object for as long as nothing changes.
    std::shared_ptr<const MediaFormat> format;
};

} // namespace ZorvaneService
