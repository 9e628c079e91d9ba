// SPDX-License-Identifier: MIT
#include "companion/StreamInput.h"

#include <cstdlib>

namespace ZorvaneClient {
namespace Companion {

namespace {

constexpr unsigned flvMpeg4Number = 9;
/// A packet that says to be shown later or earlier than this from its decoding is damaged.
constexpr int64_t maxReorderMilliseconds = 2000;

AVDictionary *inputOptions(const std::string &proxyUrl, int receiveBufferBytes)
{
    AVDictionary *options = nullptr;
    av_dict_set(&options, "protocol_whitelist", "http,https,tcp,tls,httpproxy", 0);
    av_dict_set(&options, "tls_verify", "1", 0);
    av_dict_set(&options, "user_agent", "ZorvaneClient", 0);
    av_dict_set(&options, "seekable", "0", 0);
    av_dict_set(&options, "icy", "0", 0);
    if (receiveBufferBytes > 0)
        av_dict_set_int(&options, "recv_buffer_size", receiveBufferBytes, 0);
    if (!proxyUrl.empty())
        av_dict_set(&options, "http_proxy", proxyUrl.c_str(), 0);
    return options;
}

} // namespace

FormatHandle openStream(const std::string &url, const std::string &proxyUrl, int receiveBufferBytes,
                        const AVIOInterruptCB &interrupt)
{
    AVFormatContext *context = avformat_alloc_context();
    if (!context)
        return nullptr;
    context->interrupt_callback = interrupt;
    context->flags |= AVFMT_FLAG_NOPARSE | AVFMT_FLAG_NOFILLIN;
    AVDictionary *options = inputOptions(proxyUrl, receiveBufferBytes);
    const int result =
        avformat_open_input(&context, url.c_str(), av_find_input_format("flv"), &options);
    av_dict_free(&options);
    return FormatHandle(result < 0 ? nullptr : context);
}

/// A stream without a stated length ends when the server closes it, which the HTTP layer takes
/// for a failure too.
bool isEndOfStream(AVIOContext &io)
{
    if (io.error == 0 || io.error == AVERROR_EOF)
        return io.eof_reached;
    return io.error == AVERROR(EIO) && avio_size(&io) <= 0;
}

/// Without that number there would be one more stream with every MPEG-4 packet.
const AVStream &firstStreamLike(AVFormatContext &input, const AVStream &stream)
{
    const AVStream *first = &stream;
    for (unsigned i = input.nb_streams; i-- > 0;) {
        AVCodecParameters &parameters = *input.streams[i]->codecpar;
        if (parameters.codec_id != stream.codecpar->codec_id)
            continue;
        if (parameters.codec_id == AV_CODEC_ID_MPEG4)
            parameters.codec_tag = flvMpeg4Number;
        first = input.streams[i];
    }
    return *first;
}

bool completeTimes(AVPacket &packet)
{
    if (packet.dts == AV_NOPTS_VALUE)
        packet.dts = packet.pts;
    if (packet.pts == AV_NOPTS_VALUE || std::abs(packet.pts - packet.dts) > maxReorderMilliseconds)
        packet.pts = packet.dts;
    return packet.dts != AV_NOPTS_VALUE;
}

} // namespace Companion
} // namespace ZorvaneClient
