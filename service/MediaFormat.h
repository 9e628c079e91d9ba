// SPDX-License-Identifier: MIT
#pragma once

#include "service/Bytes.h"
#include "service/PictureSize.h"

namespace ZorvaneService {

/// How a camera's pictures, which are H.264, and its sound are coded.
struct MediaFormat {
    enum class Sound { None, Mp3, Aac };

    PictureSize size;
    double picturesPerSecond = 0;
    Bytes sps; ///< as a unit, without length and start code
    Bytes pps;
    Sound sound = Sound::None;
    Bytes soundConfiguration; ///< of AAC: its AudioSpecificConfig
};

} // namespace ZorvaneService
