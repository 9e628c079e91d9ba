// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavcodec/bsf.h>
#include <libavformat/avformat.h>
#include <libavutil/frame.h>
#include <libswresample/swresample.h>
}

namespace ZorvaneClient {
namespace Companion {

struct AvRelease {
    void operator()(AVPacket *packet) const { av_packet_free(&packet); }
    void operator()(AVFrame *frame) const { av_frame_free(&frame); }
    void operator()(AVCodecContext *context) const { avcodec_free_context(&context); }
    void operator()(AVCodecParameters *parameters) const { avcodec_parameters_free(&parameters); }
    void operator()(AVFormatContext *context) const { avformat_close_input(&context); }
    void operator()(AVBSFContext *context) const { av_bsf_free(&context); }
    void operator()(SwrContext *context) const { swr_free(&context); }
};

/// Of a file that is written through callbacks.
struct AvOutputRelease {
    void operator()(AVFormatContext *context) const
    {
        if (context->pb)
            av_freep(&context->pb->buffer);
        avio_context_free(&context->pb);
        avformat_free_context(context);
    }
};

using PacketHandle = std::unique_ptr<AVPacket, AvRelease>;
using FrameHandle = std::unique_ptr<AVFrame, AvRelease>;
using CodecHandle = std::unique_ptr<AVCodecContext, AvRelease>;
using CodecParametersHandle = std::unique_ptr<AVCodecParameters, AvRelease>;
using FormatHandle = std::unique_ptr<AVFormatContext, AvRelease>;
using OutputHandle = std::unique_ptr<AVFormatContext, AvOutputRelease>;
using PacketFilterHandle = std::unique_ptr<AVBSFContext, AvRelease>;
using ResamplerHandle = std::unique_ptr<SwrContext, AvRelease>;

constexpr AVRational millisecondBase = {1, 1000};

} // namespace Companion
} // namespace ZorvaneClient
