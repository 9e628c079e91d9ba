// SPDX-License-Identifier: MIT
#include "companion/StreamReader.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

namespace ZorvaneClient {
namespace Companion {

namespace {

/// Kept small, so that a pause reaches the server soon and little old video waits after it.
const char *const receiveBufferBytes = "262144";
constexpr int maxErrorsInARow = 100;
constexpr unsigned flvMpeg4Number = 9;
/// A packet that says to be shown later or earlier than this from its decoding is damaged.
constexpr int64_t maxReorderMilliseconds = 2000;

AVDictionary *inputOptions(const Arguments &arguments)
{
    AVDictionary *options = nullptr;
    av_dict_set(&options, "protocol_whitelist", "http,https,tcp,tls,httpproxy", 0);
    av_dict_set(&options, "tls_verify", "1", 0);
    av_dict_set(&options, "user_agent", "ZorvaneClient", 0);
    av_dict_set(&options, "seekable", "0", 0);
    av_dict_set(&options, "icy", "0", 0);
    av_dict_set(&options, "recv_buffer_size", receiveBufferBytes, 0);
    if (!arguments.proxyUrl.empty())
        av_dict_set(&options, "http_proxy", arguments.proxyUrl.c_str(), 0);
    return options;
}

/// False if the packet has no time at all.
bool completeTimes(AVPacket &packet)
{
    if (packet.dts == AV_NOPTS_VALUE)
        packet.dts = packet.pts;
    if (packet.pts == AV_NOPTS_VALUE || std::abs(packet.pts - packet.dts) > maxReorderMilliseconds)
        packet.pts = packet.dts;
    return packet.dts != AV_NOPTS_VALUE;
}

/// A stream without a stated length ends when the server closes it, which the HTTP layer takes
/// for a failure too.
bool isEndOfStream(AVIOContext &io)
{
    if (io.error == 0 || io.error == AVERROR_EOF)
        return io.eof_reached;
    return io.error == AVERROR(EIO) && avio_size(&io) <= 0;
}

} // namespace

StreamReader::StreamReader(const Arguments &streamArguments, const Controls &sharedControls,
                           PacketQueue &videoQueue, PacketQueue &audioQueue)
    : arguments(streamArguments), controls(sharedControls), video(videoQueue), audio(audioQueue)
{
}

void StreamReader::run()
{
    const auto end = open() ? readToEnd() : PacketQueue::End::Failed;
    video.finish(end);
    audio.finish(end);
}

/// The container is always FLV and tells its streams as it goes: no probing, so that the first
/// picture needs nothing but the first video packet.
bool StreamReader::open()
{
    AVFormatContext *context = avformat_alloc_context();
    if (!context)
        return false;
    context->interrupt_callback = {&StreamReader::interruptWhenStalled, this};
    context->flags |= AVFMT_FLAG_NOPARSE | AVFMT_FLAG_NOFILLIN;
    AVDictionary *options = inputOptions(arguments);
    restartStallClock();
    const int result =
        avformat_open_input(&context, arguments.url.c_str(), av_find_input_format("flv"), &options);
    av_dict_free(&options);
    if (result < 0)
        return false;
    input.reset(context);
    return true;
}

PacketQueue::End StreamReader::readToEnd()
{
    int errors = 0;
    while (errors < maxErrorsInARow) {
        if (controls.isPaused()) {
            controls.waitWhilePaused();
            restartStallClock();
        }
        PacketHandle packet(av_packet_alloc());
        if (!packet)
            break;
        const int result = av_read_frame(input.get(), packet.get());
        if (result >= 0) {
            errors = 0;
            route(std::move(packet));
        } else if (isEndOfStream(*input->pb)) {
            return PacketQueue::End::Finished;
        } else if (input->pb->error < 0 || result == AVERROR_EOF) {
            break;
        } else {
            ++errors;
        }
    }
    return PacketQueue::End::Failed;
}

void StreamReader::route(PacketHandle packet)
{
    const AVStream &stream = firstStreamLike(*input->streams[packet->stream_index]);
    const AVMediaType type = stream.codecpar->codec_type;
    av_packet_rescale_ts(packet.get(), stream.time_base, millisecondBase);
    if (packet->size <= 0 || !completeTimes(*packet))
        return;
    if (type == AVMEDIA_TYPE_VIDEO) {
        video.push({std::move(packet), formatOf(stream), {}});
        restartStallClock();
    } else if (type == AVMEDIA_TYPE_AUDIO && controls.volume() > 0) {
        audio.push({std::move(packet), formatOf(stream), {}});
    }
}

/// The demuxer doesn't know MPEG-4 pictures again, and makes a new stream of every packet unless
/// the streams bear the number of that codec. The decoder's set-up is with the first of them.
const AVStream &StreamReader::firstStreamLike(const AVStream &stream)
{
    const AVStream *first = nullptr;
    for (unsigned i = 0; i < input->nb_streams; ++i) {
        AVCodecParameters &parameters = *input->streams[i]->codecpar;
        if (parameters.codec_id != stream.codecpar->codec_id)
            continue;
        if (parameters.codec_id == AV_CODEC_ID_MPEG4)
            parameters.codec_tag = flvMpeg4Number;
        if (!first)
            first = input->streams[i];
    }
    return *first;
}

std::shared_ptr<const StreamFormat> StreamReader::formatOf(const AVStream &stream)
{
    auto &known = formats[stream.codecpar->codec_type];
    if (known && known->index == stream.index)
        return known;
    auto format = std::make_shared<StreamFormat>();
    format->index = stream.index;
    format->parameters.reset(avcodec_parameters_alloc());
    avcodec_parameters_copy(format->parameters.get(), stream.codecpar);
    known = std::move(format);
    return known;
}

void StreamReader::restartStallClock()
{
    lastData = controls.now();
}

/// The network layer asks this before each look for data.
int StreamReader::interruptWhenStalled(void *pointer)
{
    auto *reader = static_cast<StreamReader *>(pointer);
    const AVIOContext *io = reader->input ? reader->input->pb : nullptr;
    const int64_t newBytes = io ? io->bytes_read - reader->bytesSeen : 0;
    if (newBytes > 0)
        reader->restartStallClock();
    reader->bytesSeen += newBytes;
    return reader->isStalled();
}

bool StreamReader::isStalled() const
{
    return controls.now() - lastData >= stallLimit;
}

} // namespace Companion
} // namespace ZorvaneClient
