// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "companion/AudioOutput.h"
#include "companion/Controls.h"
#include "companion/PacingClock.h"
#include "companion/PacketQueue.h"
#include "companion/PositionTrack.h"

namespace ZorvaneClient {
namespace Companion {

/// Decodes and plays the sound beside the pictures, by the pictures' clock. Does nothing at
/// all while the volume is 0.
class AudioPlayer
{
public:
    /// `delay`: how much later than the pictures the sound comes, for a stream that has no
    /// sound ahead of its pictures.
    AudioPlayer(const Controls &controls, PacketQueue &packets, const PacingClock &clock,
                const PositionTrack &track, std::chrono::microseconds delay);

    /// Returns at the end of the stream.
    void run();

private:
    void stopSound();
    void decode(const QueuedPacket &item);
    void openDecoder(const std::shared_ptr<const StreamFormat> &newFormat);
    void play(const AVFrame &sound);
    bool placeInTime(const AVFrame &sound);
    bool setUpResampler(const AVFrame &sound);
    bool resample(const AVFrame &sound);
    void applyVolume();

    const Controls &controls;
    PacketQueue &packets;
    const PacingClock &clock;
    const PositionTrack &track;
    const std::chrono::microseconds delay;

    std::shared_ptr<const StreamFormat> format;
    CodecHandle codec;
    FrameHandle frame;
    ResamplerHandle resampler;
    AVSampleFormat resamplerFormat = AV_SAMPLE_FMT_NONE;
    int resamplerRate = 0;
    int resamplerChannels = 0;
    AudioOutput output;
    std::vector<int16_t> samples;
};

} // namespace Companion
} // namespace ZorvaneClient
