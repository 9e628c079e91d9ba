// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

#include "server/AvHandles.h"
#include "server/H264.h"
#include "server/MediaPacket.h"

namespace ZorvaneServer {

/// Makes what is recorded of what a camera sends, in whatever form it comes. Moments and runs
/// are put in by the caller.
class PacketMaker
{
public:
    /// Empty when the stream can be recorded; else a sentence that says what it is.
    static std::string objection(const AVStream &video);
    /// What the sound is called, and whether it can be recorded.
    static SoundCodec soundCodecOf(const AVStream &sound);

    /// A picture; nothing before the first key picture with parameter sets. `sound` may be null.
    std::optional<MediaPacket> picture(const AVPacket &packet, const AVStream &video,
                                       const AVStream *sound);
    /// A frame of sound; nothing while the format has no sound.
    std::optional<MediaPacket> sound(const AVPacket &packet) const;
    /// Null before the first picture.
    const FormatPtr &format() const { return current; }

private:
    void takeSetup(const std::uint8_t *setup, std::size_t size);
    H264::Units unitsOf(const AVPacket &packet, const AVStream &video);
    void updateFormat(const H264::Units &keyPicture, const AVStream &video, const AVStream *sound);

    H264::ParameterSets sets;
    std::size_t lengthBytes = 0;
    bool hasSetup = false;
    bool setsChanged = false;
    FormatPtr current;
};

} // namespace ZorvaneServer
