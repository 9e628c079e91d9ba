// SPDX-License-Identifier: MIT
#include "companion/StreamReader.h"

#include <utility>

#include "companion/StreamInput.h"

namespace ZorvaneClient {
namespace Companion {

namespace {

/// Kept small, so that a pause reaches the server soon and little old video waits after it.
constexpr int receiveBufferBytes = 262144;
constexpr int maxErrorsInARow = 100;

} // namespace

StreamReader::StreamReader(const PlayerArguments &streamArguments, const Controls &sharedControls,
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

/// Without probing, so that the first picture needs nothing but the first video packet.
bool StreamReader::open()
{
    restartStallWatch();
    input = openStream(arguments.url, arguments.proxyUrl, receiveBufferBytes,
                       {&StreamReader::interruptWhenStalled, this});
    return input != nullptr;
}

PacketQueue::End StreamReader::readToEnd()
{
    int errors = 0;
    while (errors < maxErrorsInARow) {
        if (controls.isPaused()) {
            controls.waitWhilePaused();
            restartStallWatch();
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
    const AVStream &stream = firstStreamLike(*input, *input->streams[packet->stream_index]);
    const AVMediaType type = stream.codecpar->codec_type;
    av_packet_rescale_ts(packet.get(), stream.time_base, millisecondBase);
    if (packet->size <= 0 || !completeTimes(*packet))
        return;
    if (type == AVMEDIA_TYPE_VIDEO) {
        video.push({std::move(packet), formatOf(stream), {}});
        restartStallWatch();
    } else if (type == AVMEDIA_TYPE_AUDIO && controls.volume() > 0) {
        audio.push({std::move(packet), formatOf(stream), {}});
    }
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

void StreamReader::restartStallWatch()
{
    stallWatch.restart(controls.now());
}

/// The network layer asks this before each look for data.
int StreamReader::interruptWhenStalled(void *reader)
{
    return static_cast<StreamReader *>(reader)->isStalled();
}

bool StreamReader::isStalled()
{
    const Controls::Time now = controls.now();
    if (input && input->pb)
        stallWatch.look(input->pb->bytes_read, now);
    return stallWatch.isOver(now);
}

} // namespace Companion
} // namespace ZorvaneClient
