// SPDX-License-Identifier: MIT
#include "demo/SoundMaker.h"

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstring>

extern "C" {
#include <libavutil/channel_layout.h>
#include <libavutil/opt.h>
}

#include "demo/Clip.h"
#include "service/AvHandles.h"

namespace ZorvaneDemo {

namespace {

// A minute at this rate is a whole number of MP3 frames of 1152 samples: the loop has no seam.
constexpr int sampleRate = 48'000;
constexpr int samplesPerFrame = 1152;
constexpr int samplesPerMinute = secondsPerMinute * sampleRate;
constexpr int framesPerMinute = samplesPerMinute / samplesPerFrame;
constexpr int bitRate = 48'000;
constexpr int chimePeriod = 10 * sampleRate;
constexpr double pi = 3.14159265358979323846;

/// Room tone: filtered noise that swells and falls, and a soft chime.
class RoomTone
{
public:
    float next()
    {
        state = state * 1664525u + 1013904223u;
        const double noise = static_cast<double>(state >> 8) / (1 << 23) - 1.0;
        low += 0.012 * (noise - low);
        const double minute = static_cast<double>(sample % samplesPerMinute) / sampleRate;
        double value = low * 0.35 * (1.0 + 0.4 * std::sin(2 * pi * minute / 20));
        const double chime = static_cast<double>(sample % chimePeriod) / sampleRate;
        if (chime < 1.5)
            value += 0.05 * std::exp(-4 * chime) *
                     (std::sin(2 * pi * 660 * chime) + 0.5 * std::sin(2 * pi * 990 * chime));
        ++sample;
        return static_cast<float>(std::clamp(value, -1.0, 1.0));
    }

private:
    std::uint32_t state = 12345;
    double low = 0;
    std::int64_t sample = 0;
};

} // namespace

std::string makeSoundClip(const std::string &fileName)
{
    const AVCodec *encoder = avcodec_find_encoder_by_name("libmp3lame");
    if (!encoder)
        return "FFmpeg has no libmp3lame encoder";
    const CodecHandle codec(avcodec_alloc_context3(encoder));
    codec->sample_rate = sampleRate;
    codec->sample_fmt = AV_SAMPLE_FMT_FLTP;
    codec->bit_rate = bitRate;
    av_channel_layout_default(&codec->ch_layout, 1);
    // Without a reservoir each frame stands alone, so a stream can begin at any of them.
    av_opt_set(codec->priv_data, "reservoir", "0", 0);
    if (avcodec_open2(codec.get(), encoder, nullptr) < 0 || codec->frame_size != samplesPerFrame)
        return "cannot open the MP3 encoder";

    const FrameHandle frame(av_frame_alloc());
    frame->format = codec->sample_fmt;
    frame->nb_samples = samplesPerFrame;
    frame->sample_rate = sampleRate;
    av_channel_layout_copy(&frame->ch_layout, &codec->ch_layout);
    const PacketHandle packet(av_packet_alloc());
    if (av_frame_get_buffer(frame.get(), 0) < 0)
        return "no memory for sound";

    RoomTone tone;
    ClipWriter writer;
    for (std::int64_t number = 0; writer.packetCount() < framesPerMinute; ++number) {
        if (av_frame_make_writable(frame.get()) < 0)
            return "no memory for sound";
        auto *samples = reinterpret_cast<float *>(frame->data[0]);
        std::generate(samples, samples + samplesPerFrame, [&] { return tone.next(); });
        frame->pts = number * samplesPerFrame;
        if (avcodec_send_frame(codec.get(), frame.get()) < 0)
            return "the MP3 encoder failed";
        while (avcodec_receive_packet(codec.get(), packet.get()) == 0) {
            if (writer.packetCount() < framesPerMinute)
                writer.add(Bytes(packet->data, packet->data + packet->size), true, {});
            av_packet_unref(packet.get());
        }
    }
    if (!writer.save(fileName))
        return "cannot write " + fileName + ": " + std::strerror(errno);
    return {};
}

} // namespace ZorvaneDemo
