// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

extern "C" {
#include <libavformat/avformat.h>
#include <libswresample/swresample.h>
}

#include "service/AvHandles.h"

namespace ZorvaneServer {

struct AvRelease : ZorvaneService::AvRelease {
    using ZorvaneService::AvRelease::operator();
    void operator()(SwrContext *resampler) const { swr_free(&resampler); }
    void operator()(AVFormatContext *context) const { avformat_close_input(&context); }
    void operator()(AVCodecParserContext *parser) const { av_parser_close(parser); }
};

using ZorvaneService::CodecHandle;
using ZorvaneService::FrameHandle;
using ZorvaneService::PacketHandle;
using ResamplerHandle = std::unique_ptr<SwrContext, AvRelease>;
using FormatHandle = std::unique_ptr<AVFormatContext, AvRelease>;
using ParserHandle = std::unique_ptr<AVCodecParserContext, AvRelease>;

} // namespace ZorvaneServer
