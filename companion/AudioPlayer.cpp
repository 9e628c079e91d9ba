// SPDX-License-Identifier: MIT
#include "companion/AudioPlayer.h"

#include <cmath>
#include <utility>

extern "C" {
#include <libavutil/opt.h>
}

#include "companion/Decoder.h"

namespace ZorvaneClient {
namespace Companion {

namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;

constexpr auto idlePatience = milliseconds(100);
/// How long before it is heard a sound is handed to the device.
constexpr auto leadTime = milliseconds(250);
/// A sound that would be heard this much too early waits behind silence, too late is dropped.
constexpr auto tolerance = milliseconds(120);
/// Farther ahead is a broken time stamp.
constexpr auto maxAhead = milliseconds(5000);
/// The resampler takes 3 dB from what it puts on both channels.
constexpr double monoVolume = M_SQRT2;

} // namespace

AudioPlayer::AudioPlayer(const Controls &sharedControls, PacketQueue &packetQueue,
                         const PacingClock &pictureClock, const PositionTrack &pictureTrack,
                         microseconds soundDelay)
    : controls(sharedControls)
    , packets(packetQueue)
    , clock(pictureClock)
    , track(pictureTrack)
    , delay(soundDelay)
    , frame(av_frame_alloc())
{
}

void AudioPlayer::run()
{
    for (;;) {
        if (controls.volume() == 0)
            stopSound();
        controls.waitForSound();
        QueuedPacket item;
        switch (packets.pop(item, idlePatience)) {
        case PacketQueue::Taken::Packet:
            decode(item);
            break;
        case PacketQueue::Taken::Nothing:
            break;
        case PacketQueue::Taken::End:
            return;
        }
    }
}

void AudioPlayer::stopSound()
{
    output.close();
    packets.clear();
    codec.reset();
    format.reset();
}

void AudioPlayer::decode(const QueuedPacket &item)
{
    if (item.format != format)
        openDecoder(item.format);
    if (!codec || avcodec_send_packet(codec.get(), item.packet.get()) < 0)
        return;
    while (avcodec_receive_frame(codec.get(), frame.get()) >= 0)
        play(*frame);
}

void AudioPlayer::openDecoder(const std::shared_ptr<const StreamFormat> &newFormat)
{
    format = newFormat;
    codec = Companion::openDecoder(*format->parameters);
}

void AudioPlayer::play(const AVFrame &sound)
{
    if (sound.sample_rate <= 0 || !output.open(sound.sample_rate))
        return;
    if (!placeInTime(sound) || !resample(sound))
        return;
    applyVolume();
    output.play(samples);
}

/// Waits until the sound is near, and fills with silence what lacks before it. False if the
/// sound has no place any more.
bool AudioPlayer::placeInTime(const AVFrame &sound)
{
    if (!clock.isRunning())
        return false;
    if (sound.pts == AV_NOPTS_VALUE)
        return true;
    const microseconds due = clock.due(milliseconds(sound.pts + track.offset())) + delay;
    if (due - controls.now() > maxAhead)
        return false;
    controls.waitUntil(due - leadTime);
    const microseconds early = due - (controls.now() + output.queued());
    if (early < -tolerance)
        return false;
    if (early > tolerance)
        output.playSilence(early);
    return true;
}

/// Keeps the one at hand for as long as the sound stays of one kind.
bool AudioPlayer::setUpResampler(const AVFrame &sound)
{
    const auto sampleFormat = static_cast<AVSampleFormat>(sound.format);
    const int soundChannels = sound.ch_layout.nb_channels;
    if (resampler && sampleFormat == resamplerFormat && sound.sample_rate == resamplerRate &&
        soundChannels == resamplerChannels)
        return true;
    AVChannelLayout stereo = AV_CHANNEL_LAYOUT_STEREO;
    AVChannelLayout given = sound.ch_layout; // the library only reads it
    SwrContext *context = nullptr;
    resampler.reset();
    if (swr_alloc_set_opts2(&context, &stereo, AV_SAMPLE_FMT_S16, sound.sample_rate, &given,
                            sampleFormat, sound.sample_rate, 0, nullptr) < 0)
        return false;
    ResamplerHandle made(context);
    if (soundChannels == 1)
        av_opt_set_double(context, "rematrix_volume", monoVolume, 0);
    if (swr_init(context) < 0)
        return false;
    resampler = std::move(made);
    resamplerFormat = sampleFormat;
    resamplerRate = sound.sample_rate;
    resamplerChannels = soundChannels;
    return true;
}

bool AudioPlayer::resample(const AVFrame &sound)
{
    if (!setUpResampler(sound))
        return false;
    samples.resize(static_cast<size_t>(sound.nb_samples) * AudioOutput::channels);
    auto *bytes = reinterpret_cast<uint8_t *>(samples.data());
    const int converted =
        swr_convert(resampler.get(), &bytes, sound.nb_samples,
                    const_cast<const uint8_t **>(sound.extended_data), sound.nb_samples);
    if (converted < 0)
        return false;
    samples.resize(static_cast<size_t>(converted) * AudioOutput::channels);
    return true;
}

void AudioPlayer::applyVolume()
{
    const int volume = controls.volume();
    if (volume == Controls::maxVolume)
        return;
    for (int16_t &sample : samples)
        sample = static_cast<int16_t>(sample * volume / Controls::maxVolume);
}

} // namespace Companion
} // namespace ZorvaneClient
