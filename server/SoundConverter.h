// SPDX-License-Identifier: MIT
#pragma once

#include <deque>
#include <memory>
#include <vector>

#include "server/AvHandles.h"
#include "server/StreamFormat.h"

namespace ZorvaneServer {

/// Turns a camera's sound into MP3 of one channel, which is what players ask for. Its frames keep
/// the moments of what they were made of.
class SoundConverter
{
public:
    struct Frame {
        std::int64_t momentMs = 0;
        Bytes data;
    };

    /// Null when there is no sound, or none that can be converted.
    static std::unique_ptr<SoundConverter> of(const StreamFormat &format);

    ~SoundConverter();
    SoundConverter(const SoundConverter &) = delete;
    SoundConverter &operator=(const SoundConverter &) = delete;

    void put(const Bytes &frame, std::int64_t momentMs);
    /// The next frame that came of it; false when there is none yet.
    bool take(Frame *frame);

private:
    explicit SoundConverter(CodecHandle soundDecoder);
    bool prepare();
    void resample();
    void encode();

    CodecHandle decoder;
    CodecHandle encoder; ///< made for the first sound that is decoded
    ResamplerHandle resampler;
    FrameHandle decoded;
    FrameHandle chunk; ///< as much as the encoder takes at once
    PacketHandle packet;
    std::vector<float> waiting;
    std::int64_t given = 0; ///< samples, since the encoder's begin
    double beginMs = 0;     ///< moment of the first of them
    std::deque<Frame> ready;
};

} // namespace ZorvaneServer
