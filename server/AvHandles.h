// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libswresample/swresample.h>
}

namespace ZorvaneServer {

struct AvRelease {
    void operator()(AVPacket *packet) const { av_packet_free(&packet); }
    void operator()(AVFrame *frame) const { av_frame_free(&frame); }
    void operator()(SwrContext *resampler) const { swr_free(&resampler); }
    void operator()(AVFormatContext *context) const { avformat_close_input(&context); }
    void operator()(AVCodecContext *context) const { avcodec_free_context(&context); }
    void operator()(AVCodecParserContext *parser) const { av_parser_close(parser); }
};

using PacketHandle = std::unique_ptr<AVPacket, AvRelease>;
using FrameHandle = std::unique_ptr<AVFrame, AvRelease>;
using ResamplerHandle = std::unique_ptr<SwrContext, AvRelease>;
using FormatHandle = std::unique_ptr<AVFormatContext, AvRelease>;
using CodecHandle = std::unique_ptr<AVCodecContext, AvRelease>;
using ParserHandle = std::unique_ptr<AVCodecParserContext, AvRelease>;

} // namespace ZorvaneServer
