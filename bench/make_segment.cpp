// SPDX-License-Identifier: MIT
// Usage: make_segment CLIP START_MS LENGTH_MS FILE
// Writes a segment as zorvane-server does, at once, of a clip played over and over.

#include <cstdio>
#include <cstdlib>
#include <string>

#include <fcntl.h>

#include "server/AvHandles.h"
#include "server/PacketMaker.h"
#include "server/SegmentWriter.h"

using namespace ZorvaneServer;

namespace {

constexpr AVRational milliseconds = {1, 1000};

/// All packets, with their times in the clip as moments, and the clip's length.
std::vector<MediaPacket> packetsOf(const char *path, std::int64_t *lengthMs)
{
    AVFormatContext *context = nullptr;
    std::vector<MediaPacket> packets;
    if (avformat_open_input(&context, path, nullptr, nullptr) < 0)
        return packets;
    const FormatHandle format(context);
    const AVStream *video = nullptr;
    const AVStream *sound = nullptr;
    for (unsigned i = 0; i < format->nb_streams; ++i) {
        const AVStream *stream = format->streams[i];
        (stream->codecpar->codec_type == AVMEDIA_TYPE_VIDEO ? video : sound) = stream;
    }
    PacketMaker maker;
    const PacketHandle packet(av_packet_alloc());
    while (video && av_read_frame(format.get(), packet.get()) == 0) {
        const AVStream *stream = format->streams[packet->stream_index];
        auto made = stream == video ? maker.picture(*packet, *video, sound) : maker.sound(*packet);
        if (made) {
            made->momentMs = av_rescale_q(packet->pts, stream->time_base, milliseconds);
            packets.push_back(std::move(*made));
        }
        if (stream == video)
            *lengthMs =
                av_rescale_q(packet->pts + packet->duration, video->time_base, milliseconds);
        av_packet_unref(packet.get());
    }
    return packets;
}

} // namespace

int main(int count, char **arguments)
{
    if (count != 5)
        return EXIT_FAILURE;
    std::int64_t clipMs = 0;
    const auto packets = packetsOf(arguments[1], &clipMs);
    const std::int64_t startMs = std::atoll(arguments[2]);
    const std::int64_t endMs = startMs + std::atoll(arguments[3]);
    if (packets.empty() || clipMs <= 0) {
        std::fprintf(stderr, "%s is no clip\n", arguments[1]);
        return EXIT_FAILURE;
    }
    const auto writer =
        SegmentWriter::create(AT_FDCWD, arguments[4], packets.front().format, startMs);
    bool good = writer != nullptr;
    for (std::int64_t ms = startMs; good && ms < endMs; ms += clipMs) {
        for (MediaPacket packet : packets) {
            packet.momentMs += ms;
            if (packet.momentMs < endMs)
                good = good && writer->append(packet) == SegmentWriter::Outcome::Written;
        }
    }
    if (good && writer->finish())
        return EXIT_SUCCESS;
    std::perror(arguments[4]);
    return EXIT_FAILURE;
}
