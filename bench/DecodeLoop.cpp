// SPDX-License-Identifier: MIT
#include "bench/DecodeLoop.h"

#include <sys/wait.h>
#include <unistd.h>

#include <vector>

#include "bench/Measure.h"
#include "companion/Decoder.h"

extern "C" {
#include <libavutil/log.h>
}

namespace ZorvaneClient {
namespace Bench {

using namespace Companion;

namespace {

constexpr long pictureNanoseconds = 40'000'000;
constexpr long secondNanoseconds = 1'000'000'000;

void sleepUntil(timespec &due)
{
    due.tv_nsec += pictureNanoseconds;
    if (due.tv_nsec >= secondNanoseconds) {
        due.tv_nsec -= secondNanoseconds;
        ++due.tv_sec;
    }
    clock_nanosleep(CLOCK_MONOTONIC, TIMER_ABSTIME, &due, nullptr);
}

double decodeFile(const QByteArray &path, Pace pace)
{
    AVFormatContext *context = avformat_alloc_context();
    context->flags |= AVFMT_FLAG_NOPARSE | AVFMT_FLAG_NOFILLIN;
    if (avformat_open_input(&context, path.constData(), nullptr, nullptr) < 0)
        return 0;
    const FormatHandle input(context);
    const PacketHandle packet(av_packet_alloc());
    const FrameHandle frame(av_frame_alloc());
    CodecHandle codec;
    int pictures = -1;
    double started = 0;
    timespec due = {};
    clock_gettime(CLOCK_MONOTONIC, &due);
    while (pictures < measuredPictures && av_read_frame(input.get(), packet.get()) >= 0) {
        const AVStream *stream = input->streams[packet->stream_index];
        if (stream->codecpar->codec_type == AVMEDIA_TYPE_VIDEO) {
            if (!codec)
                codec = openDecoder(*stream->codecpar);
            if (!codec)
                return 0;
            if (pace == Pace::Stream)
                sleepUntil(due);
            avcodec_send_packet(codec.get(), packet.get());
            while (avcodec_receive_frame(codec.get(), frame.get()) >= 0) {
                if (++pictures == 0)
                    started = cpuMilliseconds();
            }
        }
        av_packet_unref(packet.get());
    }
    return pictures > 0 ? (cpuMilliseconds() - started) / pictures : 0;
}

} // namespace

double decodeMilliseconds(const QByteArray &path, Pace pace, int processes)
{
    int ends[2];
    if (pipe(ends) != 0)
        return 0;
    std::vector<pid_t> children;
    for (int i = 0; i < processes; ++i) {
        children.push_back(fork());
        if (children.back() == 0) {
            av_log_set_level(AV_LOG_QUIET);
            const double result = decodeFile(path, pace);
            const ssize_t written = write(ends[1], &result, sizeof result);
            _exit(written == sizeof result ? 0 : 1);
        }
    }
    close(ends[1]);
    double sum = 0;
    for (double result = 0; read(ends[0], &result, sizeof result) == sizeof result;)
        sum += result;
    close(ends[0]);
    for (const pid_t child : children)
        waitpid(child, nullptr, 0);
    return sum / processes;
}

} // namespace Bench
} // namespace ZorvaneClient
