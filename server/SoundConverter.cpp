// SPDX-License-Identifier: MIT
#include "server/SoundConverter.h"

#include <algorithm>
#include <cmath>
#include <cstring>

namespace ZorvaneServer {

namespace {

constexpr double secondMs = 1000;
// Less is the trembling of moments; more is a hole in the sound.
constexpr double mostApartMs = 60;
constexpr int usualRate = 48'000;
// From this rate on sound is more than speech.
constexpr int wideRate = 32'000;
constexpr int wideBits = 64'000;
constexpr int narrowBits = 32'000;
constexpr int fastest = 9;

AVCodecID codecOf(SoundCodec sound)
{
    switch (sound) {
    case SoundCodec::Aac:
        return AV_CODEC_ID_AAC;
    case SoundCodec::Mp3:
        return AV_CODEC_ID_MP3;
    case SoundCodec::ALaw:
        return AV_CODEC_ID_PCM_ALAW;
    case SoundCodec::MuLaw:
        return AV_CODEC_ID_PCM_MULAW;
    case SoundCodec::None:
        break;
    }
    return AV_CODEC_ID_NONE;
}

int encodedRate(const AVCodec &codec, int rate)
{
    for (const int *one = codec.supported_samplerates; one && *one != 0; ++one) {
        if (*one == rate)
            return rate;
    }
    return usualRate;
}

bool fill(AVPacket *packet, const Bytes &data)
{
    if (av_new_packet(packet, static_cast<int>(data.size())) < 0)
        return false;
    std::copy(data.begin(), data.end(), packet->data);
    return true;
}

} // namespace

std::unique_ptr<SoundConverter> SoundConverter::of(const StreamFormat &format)
{
    const AVCodec *codec = avcodec_find_decoder(codecOf(format.sound));
    CodecHandle decoder(codec ? avcodec_alloc_context3(codec) : nullptr);
    if (!decoder || !avcodec_find_encoder(AV_CODEC_ID_MP3))
        return nullptr;
    decoder->sample_rate = format.soundRate;
    av_channel_layout_default(&decoder->ch_layout, format.soundChannels);
    if (!format.soundSetup.empty()) {
        const std::size_t size = format.soundSetup.size();
        decoder->extradata =
            static_cast<std::uint8_t *>(av_mallocz(size + AV_INPUT_BUFFER_PADDING_SIZE));
        decoder->extradata_size = static_cast<int>(size);
        std::copy(format.soundSetup.begin(), format.soundSetup.end(), decoder->extradata);
    }
    if (avcodec_open2(decoder.get(), codec, nullptr) < 0)
        return nullptr;
    return std::unique_ptr<SoundConverter>(new SoundConverter(std::move(decoder)));
}

SoundConverter::SoundConverter(CodecHandle soundDecoder)
    : decoder(std::move(soundDecoder))
    , decoded(av_frame_alloc())
    , chunk(av_frame_alloc())
    , packet(av_packet_alloc())
{
}

SoundConverter::~SoundConverter()
{
    // An encoder that is not emptied complains.
    if (encoder && avcodec_send_frame(encoder.get(), nullptr) == 0) {
        while (avcodec_receive_packet(encoder.get(), packet.get()) == 0)
            av_packet_unref(packet.get());
    }
}

void SoundConverter::put(const Bytes &frame, std::int64_t momentMs)
{
    if (!fill(packet.get(), frame))
        return;
    const bool isTaken = avcodec_send_packet(decoder.get(), packet.get()) == 0;
    av_packet_unref(packet.get());
    while (isTaken && avcodec_receive_frame(decoder.get(), decoded.get()) == 0) {
        if (!encoder && !prepare())
            return;
        const double expectedMs = beginMs + double(given + std::int64_t(waiting.size())) *
                                                secondMs / encoder->sample_rate;
        if (std::abs(double(momentMs) - expectedMs) > mostApartMs)
            beginMs += double(momentMs) - expectedMs;
        resample();
    }
    encode();
}

/// What the decoder gives is only known now: some formats tell half of their rate.
bool SoundConverter::prepare()
{
    const AVCodec *codec = avcodec_find_encoder(AV_CODEC_ID_MP3);
    encoder.reset(avcodec_alloc_context3(codec));
    encoder->sample_rate = encodedRate(*codec, decoded->sample_rate);
    encoder->time_base = {1, encoder->sample_rate};
    encoder->sample_fmt = AV_SAMPLE_FMT_FLTP;
    encoder->bit_rate = encoder->sample_rate >= wideRate ? wideBits : narrowBits;
    encoder->compression_level = fastest;
    av_channel_layout_default(&encoder->ch_layout, 1);
    SwrContext *made = nullptr;
    swr_alloc_set_opts2(&made, &encoder->ch_layout, encoder->sample_fmt, encoder->sample_rate,
                        &decoded->ch_layout, AVSampleFormat(decoded->format), decoded->sample_rate,
                        0, nullptr);
    resampler.reset(made);
    if (!made || swr_init(made) < 0 || avcodec_open2(encoder.get(), codec, nullptr) < 0) {
        encoder.reset();
        return false;
    }
    chunk->nb_samples = encoder->frame_size;
    chunk->format = encoder->sample_fmt;
    chunk->sample_rate = encoder->sample_rate;
    av_channel_layout_copy(&chunk->ch_layout, &encoder->ch_layout);
    return av_frame_get_buffer(chunk.get(), 0) == 0;
}

void SoundConverter::resample()
{
    const std::size_t before = waiting.size();
    const int most = swr_get_out_samples(resampler.get(), decoded->nb_samples);
    waiting.resize(before + static_cast<std::size_t>(std::max(most, 0)));
    auto *out = reinterpret_cast<std::uint8_t *>(waiting.data() + before);
    const int got =
        swr_convert(resampler.get(), &out, most,
                    const_cast<const std::uint8_t **>(decoded->extended_data), decoded->nb_samples);
    waiting.resize(before + static_cast<std::size_t>(std::max(got, 0)));
}

void SoundConverter::encode()
{
    std::size_t used = 0;
    const auto size = static_cast<std::size_t>(chunk->nb_samples);
    while (encoder && waiting.size() - used >= size && av_frame_make_writable(chunk.get()) == 0) {
        std::memcpy(chunk->data[0], waiting.data() + used, size * sizeof(float));
        chunk->pts = given;
        used += size;
        given += chunk->nb_samples;
        avcodec_send_frame(encoder.get(), chunk.get());
        while (avcodec_receive_packet(encoder.get(), packet.get()) == 0) {
            const double afterMs = double(packet->pts) * secondMs / encoder->sample_rate;
            ready.push_back({std::llround(beginMs + afterMs),
                             Bytes(packet->data, packet->data + packet->size)});
            av_packet_unref(packet.get());
        }
    }
    waiting.erase(waiting.begin(), waiting.begin() + static_cast<std::ptrdiff_t>(used));
}

bool SoundConverter::take(Frame *frame)
{
    if (ready.empty())
        return false;
    *frame = std::move(ready.front());
    ready.pop_front();
    return true;
}

} // namespace ZorvaneServer
