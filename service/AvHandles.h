// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

extern "C" {
#include <libavcodec/avcodec.h>
}

namespace ZorvaneService {

struct AvRelease {
    void operator()(AVCodecContext *codec) const { avcodec_free_context(&codec); }
    void operator()(AVFrame *frame) const { av_frame_free(&frame); }
    void operator()(AVPacket *packet) const { av_packet_free(&packet); }
};

using CodecHandle = std::unique_ptr<AVCodecContext, AvRelease>;
using FrameHandle = std::unique_ptr<AVFrame, AvRelease>;
using PacketHandle = std::unique_ptr<AVPacket, AvRelease>;

} // namespace ZorvaneService
