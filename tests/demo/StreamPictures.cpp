// SPDX-License-Identifier: MIT
#include "tests/demo/StreamPictures.h"

#include <QDateTime>
#include <QElapsedTimer>

#include <memory>

extern "C" {
#include <libavcodec/avcodec.h>
#include <libavformat/avformat.h>
#include <libswscale/swscale.h>
}

namespace ZorvaneClient {
namespace Tests {

namespace {

struct Deadline {
    QElapsedTimer clock;
    int timeoutMs;
};

int interrupted(void *opaque)
{
    const auto *deadline = static_cast<const Deadline *>(opaque);
    return deadline->clock.hasExpired(deadline->timeoutMs) ? 1 : 0;
}

struct Deleter {
    void operator()(AVFormatContext *input) const { avformat_close_input(&input); }
    void operator()(AVCodecContext *codec) const { avcodec_free_context(&codec); }
    void operator()(AVFrame *frame) const { av_frame_free(&frame); }
    void operator()(AVPacket *packet) const { av_packet_free(&packet); }
};

QImage imageOf(const AVFrame *frame)
{
    QImage image(frame->width, frame->height, QImage::Format_RGB32);
    SwsContext *scaler = sws_getContext(
        frame->width, frame->height, static_cast<AVPixelFormat>(frame->format), frame->width,
        frame->height, AV_PIX_FMT_BGRA, SWS_BILINEAR, nullptr, nullptr, nullptr);
    std::uint8_t *const lines[1] = {image.bits()};
    const int stride[1] = {static_cast<int>(image.bytesPerLine())};
    sws_scale(scaler, frame->data, frame->linesize, 0, frame->height, lines, stride);
    sws_freeContext(scaler);
    return image;
}

} // namespace

StreamPictures StreamPictures::from(const QString &url, int count, int timeoutMs)
{
    av_log_set_level(AV_LOG_QUIET);
    StreamPictures result;
    Deadline deadline{{}, timeoutMs};
    deadline.clock.start();
    AVFormatContext *raw = avformat_alloc_context();
    raw->interrupt_callback = {interrupted, &deadline};
    raw->flags |= AVFMT_FLAG_NOBUFFER;
    if (avformat_open_input(&raw, url.toUtf8().constData(), nullptr, nullptr) < 0)
        return result;
    const std::unique_ptr<AVFormatContext, Deleter> input(raw);
    result.opened = true;

    const std::unique_ptr<AVCodecContext, Deleter> codec(
        avcodec_alloc_context3(avcodec_find_decoder(AV_CODEC_ID_H264)));
    codec->thread_count = 1;
    const std::unique_ptr<AVPacket, Deleter> packet(av_packet_alloc());
    const std::unique_ptr<AVFrame, Deleter> frame(av_frame_alloc());
    bool open = false;
    while (result.pictures.size() < count) {
        const int read = av_read_frame(input.get(), packet.get());
        if (read < 0) {
            result.ended = read == AVERROR_EOF;
            return result;
        }
        const AVCodecParameters *parameters = input->streams[packet->stream_index]->codecpar;
        if (parameters->codec_type == AVMEDIA_TYPE_AUDIO)
            result.sound = parameters->codec_id == AV_CODEC_ID_MP3;
        if (parameters->codec_type == AVMEDIA_TYPE_VIDEO) {
            if (!open && parameters->extradata_size > 0) {
                avcodec_parameters_to_context(codec.get(), parameters);
                open = avcodec_open2(codec.get(), nullptr, nullptr) == 0;
            }
            if (!open || avcodec_send_packet(codec.get(), packet.get()) < 0)
                result.damaged = true;
            while (open && avcodec_receive_frame(codec.get(), frame.get()) == 0) {
                result.damaged |= frame->decode_error_flags != 0;
                const QImage image = imageOf(frame.get());
                result.pictures.append({image, frame->pts, QDateTime::currentMSecsSinceEpoch(),
                                        (packet->flags & AV_PKT_FLAG_KEY) != 0,
                                        StripReader::read(image).value_or(Strip())});
            }
        }
        av_packet_unref(packet.get());
    }
    return result;
}

} // namespace Tests
} // namespace ZorvaneClient
