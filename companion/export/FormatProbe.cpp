// SPDX-License-Identifier: MIT
#include "companion/export/FormatProbe.h"

#include "companion/Decoder.h"

namespace ZorvaneClient {
namespace Companion {

namespace {

bool decodeFirst(AVCodecContext &codec, const std::vector<const AVPacket *> &packets,
                 AVFrame &frame)
{
    for (const AVPacket *packet : packets) {
        avcodec_send_packet(&codec, packet);
        if (avcodec_receive_frame(&codec, &frame) >= 0)
            return true;
    }
    avcodec_send_packet(&codec, nullptr);
    return avcodec_receive_frame(&codec, &frame) >= 0;
}

} // namespace

bool completeFormat(AVCodecParameters &parameters, const std::vector<const AVPacket *> &packets)
{
    const CodecHandle codec = openDecoder(parameters);
    const FrameHandle frame(av_frame_alloc());
    if (!codec || !frame || !decodeFirst(*codec, packets, *frame))
        return false;
    if (parameters.codec_type == AVMEDIA_TYPE_VIDEO) {
        parameters.width = frame->width;
        parameters.height = frame->height;
        parameters.format = frame->format;
        parameters.sample_aspect_ratio = frame->sample_aspect_ratio;
        return frame->width > 0 && frame->height > 0;
    }
    parameters.sample_rate = frame->sample_rate;
    parameters.frame_size = frame->nb_samples;
    parameters.bit_rate = codec->bit_rate;
    return frame->sample_rate > 0 &&
           av_channel_layout_copy(&parameters.ch_layout, &frame->ch_layout) >= 0;
}

} // namespace Companion
} // namespace ZorvaneClient
