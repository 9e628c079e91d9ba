// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <tuple>
#include <vector>

namespace ZorvaneServer {

using Bytes = std::vector<std::uint8_t>;

enum class SoundCodec : std::uint8_t { None, Aac, Mp3, ALaw, MuLaw };

/// What a decoder has to know of a stream before its first packet.
struct StreamFormat {
    int width = 0;
    int height = 0;
    Bytes videoSetup; ///< parameter sets, as an AVCDecoderConfigurationRecord
    SoundCodec sound = SoundCodec::None;
    int soundRate = 0;
    int soundChannels = 0;
    Bytes soundSetup; ///< AudioSpecificConfig of AAC; else empty

    bool operator==(const StreamFormat &other) const { return tied() == other.tied(); }
    bool operator!=(const StreamFormat &other) const { return !(*this == other); }

private:
    std::tuple<int, int, const Bytes &, SoundCodec, int, int, const Bytes &> tied() const
    {
        return {width, height, videoSetup, sound, soundRate, soundChannels, soundSetup};
    }
};

using FormatPtr = std::shared_ptr<const StreamFormat>;

} // namespace ZorvaneServer
