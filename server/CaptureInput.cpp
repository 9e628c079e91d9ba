// SPDX-License-Identifier: MIT
#include "server/CaptureInput.h"

#include <algorithm>
#include <thread>

#include "server/WallClock.h"

namespace ZorvaneServer {

using namespace std::chrono_literals;
using std::chrono::microseconds;

namespace {

constexpr AVRational microsecondBase = {1, 1'000'000};
constexpr microseconds longestDelay = 2s;
constexpr microseconds longestNap = 100ms;
// What a stream without a rate of its own is taken to have.
constexpr microseconds usualPicture = 40ms;
constexpr char program[] = "zorvane-server";

std::string reasonOf(int code)
{
    char text[AV_ERROR_MAX_STRING_SIZE];
    return av_strerror(code, text, sizeof text) == 0 ? text : "unknown error";
}

} // namespace

CaptureInput::CaptureInput(CameraSource cameraSource, std::function<bool()> over)
    : source(std::move(cameraSource)), isOver(std::move(over)), packet(av_packet_alloc())
{
}

int CaptureInput::askOver(void *input)
{
    return static_cast<const CaptureInput *>(input)->isOver() ? 1 : 0;
}

std::string CaptureInput::open()
{
    AVFormatContext *context = avformat_alloc_context();
    context->interrupt_callback = {&CaptureInput::askOver, this};
    AVDictionary *options = nullptr;
    const std::string scheme = source.scheme();
    if (scheme == "rtsp" || scheme == "rtsps") {
        av_dict_set(&options, "rtsp_transport", source.overUdp ? "udp" : "tcp", 0);
        av_dict_set(&options, "allowed_media_types", source.withSound ? "video+audio" : "video", 0);
    }
    if (!source.isFile())
        av_dict_set(&options, "user_agent", program, 0);
    const int code = avformat_open_input(&context, source.url.c_str(), nullptr, &options);
    av_dict_free(&options);
    format.reset(code < 0 ? nullptr : context);
    if (code < 0)
        return reasonOf(code);
    chooseStreams();
    return {};
}

void CaptureInput::chooseStreams()
{
    videoStream = nullptr;
    soundStream = nullptr;
    for (unsigned i = 0; i < format->nb_streams; ++i) {
        const AVStream *stream = format->streams[i];
        const AVMediaType type = stream->codecpar->codec_type;
        if (type == AVMEDIA_TYPE_VIDEO && !videoStream)
            videoStream = stream;
        else if (type == AVMEDIA_TYPE_AUDIO && !soundStream && source.withSound)
            soundStream = stream;
    }
}

AVPacket *CaptureInput::read()
{
    av_packet_unref(packet.get());
    int code = av_read_frame(format.get(), packet.get());
    if (code == AVERROR_EOF && source.isFile() && readLooped())
        code = av_read_frame(format.get(), packet.get());
    if (code < 0) {
        reason = isOver() ? "no pictures came" : reasonOf(code);
        return nullptr;
    }
    // Some sources tell their streams only with the first packets.
    if (!videoStream || (!soundStream && source.withSound))
        chooseStreams();
    readTimes();
    if (source.isFile())
        waitForTime();
    return packet.get();
}

/// Goes back to the begin; what follows is later by all that was read.
bool CaptureInput::readLooped()
{
    loopOffset = latestEnd - firstStamp.value_or(0us);
    return !isOver() &&
           avformat_seek_file(format.get(), -1, INT64_MIN, 0, 0, AVSEEK_FLAG_BACKWARD) >= 0;
}

void CaptureInput::waitForTime()
{
    if (!firstStamp) {
        firstStamp = decoded;
        begun = steadyTime() - decoded;
    }
    if (packet->stream_index == (videoStream ? videoStream->index : 0)) {
        const microseconds length = timeOf(packet->duration);
        latestEnd = std::max(latestEnd, decoded + (length > 0us ? length : usualPicture));
    }
    for (microseconds left = 1us; left > 0us && !isOver();) {
        left = begun + decoded - steadyTime();
        if (left > 0us)
            std::this_thread::sleep_for(std::min(left, longestNap));
    }
}

microseconds CaptureInput::timeOf(std::int64_t units) const
{
    const AVRational base = format->streams[packet->stream_index]->time_base;
    return microseconds(av_rescale_q(units, base, microsecondBase));
}

void CaptureInput::readTimes()
{
    const bool isPicture = videoStream && packet->stream_index == videoStream->index;
    shownLater = 0us;
    if (packet->dts == AV_NOPTS_VALUE && packet->pts == AV_NOPTS_VALUE) {
        decoded = loopOffset;
    } else if (packet->pts == AV_NOPTS_VALUE) {
        decoded = loopOffset + timeOf(packet->dts);
    } else {
        const microseconds shown = loopOffset + timeOf(packet->pts);
        if (packet->dts != AV_NOPTS_VALUE)
            decoded = loopOffset + timeOf(packet->dts);
        else
            decoded = isPicture ? order.place(shown) : shown;
        shownLater = std::clamp(shown - decoded, -DecodingOrder::farthest, longestDelay);
    }
}

} // namespace ZorvaneServer
