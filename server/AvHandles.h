// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
}

namespace ZorvaneServer {

struct AvRelease {
    void operator()(AVPacket *packet) const { av_packet_free(&packet); }
    void operator()(AVFormatContext *context) const { avformat_close_input(&context); }
    void operator()(AVCodecContext *context) const { avcodec_free_context(&context); }
    void operator()(AVCodecParserContext *parser) const { av_parser_close(parser); }
};

using PacketHandle = std::unique_ptr<AVPacket, AvRelease>;
using FormatHandle = std::unique_ptr<AVFormatContext, AvRelease>;
using CodecHandle = std::unique_ptr<AVCodecContext, AvRelease>;
using ParserHandle = std::unique_ptr<AVCodecParserContext, AvRelease>;

} // namespace ZorvaneServer
