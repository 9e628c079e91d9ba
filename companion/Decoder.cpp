// SPDX-License-Identifier: MIT
#include "companion/Decoder.h"

namespace ZorvaneClient {
namespace Companion {

namespace {

/// Each further thread costs memory, processor time and one picture of delay.
constexpr int decoderThreads = 1;
/// 8K; what says to be larger is damaged.
constexpr int64_t maxCodedPixels = int64_t(8192) * 4608;

} // namespace

CodecHandle openDecoder(const AVCodecParameters &parameters)
{
    const AVCodec *decoder = avcodec_find_decoder(parameters.codec_id);
    CodecHandle codec(decoder ? avcodec_alloc_context3(decoder) : nullptr);
    if (!codec || avcodec_parameters_to_context(codec.get(), &parameters) < 0)
        return nullptr;
    codec->pkt_timebase = millisecondBase;
    codec->thread_count = decoderThreads;
    codec->max_pixels = maxCodedPixels;
    if (avcodec_open2(codec.get(), decoder, nullptr) < 0)
        return nullptr;
    return codec;
}

} // namespace Companion
} // namespace ZorvaneClient
