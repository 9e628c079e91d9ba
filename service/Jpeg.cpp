// SPDX-License-Identifier: MIT
#include "service/Jpeg.h"

#include <algorithm>
#include <cstddef>
#include <iterator>

#include "service/NalUnit.h"

namespace ZorvaneService {

namespace {

constexpr int jpegQuality = 3; ///< of 2 (best) to 31
constexpr std::uint8_t startCode[4] = {0, 0, 0, 1};

void appendUnit(const std::uint8_t *data, std::size_t size, Bytes *out)
{
    out->insert(out->end(), std::begin(startCode), std::end(startCode));
    out->insert(out->end(), data, data + size);
}

/// The picture as a byte stream that needs nothing before it.
Bytes standalone(const MediaFormat &format, const Bytes &keyFrame)
{
    Bytes out;
    appendUnit(format.sps.data(), format.sps.size(), &out);
    appendUnit(format.pps.data(), format.pps.size(), &out);
    for (const NalUnit &unit : unitsAfterLengths(keyFrame.data(), keyFrame.size()))
        appendUnit(unit.data, unit.size, &out);
    return out;
}

/// JPEG knows no other levels than 0 to 255. False for a picture that is not 4:2:0.
bool toFullRange(AVFrame *frame)
{
    if (frame->format == AV_PIX_FMT_YUVJ420P)
        return true;
    if (frame->format != AV_PIX_FMT_YUV420P || av_frame_make_writable(frame) < 0)
        return false;
    if (frame->color_range == AVCOL_RANGE_JPEG) {
        frame->format = AV_PIX_FMT_YUVJ420P;
        return true;
    }
    for (int plane = 0; plane < 3; ++plane) {
        const int lines = plane == 0 ? frame->height : (frame->height + 1) / 2;
        const int width = plane == 0 ? frame->width : (frame->width + 1) / 2;
        for (int y = 0; y < lines; ++y) {
            std::uint8_t *line = frame->data[plane] + std::ptrdiff_t(y) * frame->linesize[plane];
            for (int x = 0; x < width; ++x) {
                const int value =
                    plane == 0 ? (line[x] - 16) * 255 / 219 : (line[x] - 128) * 255 / 224 + 128;
                line[x] = static_cast<std::uint8_t>(std::clamp(value, 0, 255));
            }
        }
    }
    frame->format = AV_PIX_FMT_YUVJ420P;
    frame->color_range = AVCOL_RANGE_JPEG;
    return true;
}

} // namespace

FrameHandle decoded(const MediaFormat &format, const Bytes &keyFrame)
{
    const Bytes stream = standalone(format, keyFrame);
    const CodecHandle codec(avcodec_alloc_context3(avcodec_find_decoder(AV_CODEC_ID_H264)));
    codec->thread_count = 1;
    codec->flags |= AV_CODEC_FLAG_LOW_DELAY;
    const PacketHandle packet(av_packet_alloc());
    FrameHandle frame(av_frame_alloc());
    if (avcodec_open2(codec.get(), nullptr, nullptr) < 0 ||
        av_new_packet(packet.get(), static_cast<int>(stream.size())) < 0)
        return nullptr;
    std::copy(stream.begin(), stream.end(), packet->data);
    if (avcodec_send_packet(codec.get(), packet.get()) < 0)
        return nullptr;
    avcodec_send_packet(codec.get(), nullptr);
    return avcodec_receive_frame(codec.get(), frame.get()) == 0 ? std::move(frame) : nullptr;
}

std::string jpegOf(const MediaFormat &format, const Bytes &keyFrame)
{
    return jpegOf(decoded(format, keyFrame).get());
}

std::string jpegOf(AVFrame *frame)
{
    if (!frame || !toFullRange(frame))
        return {};
    const CodecHandle codec(avcodec_alloc_context3(avcodec_find_encoder(AV_CODEC_ID_MJPEG)));
    codec->width = frame->width;
    codec->height = frame->height;
    codec->pix_fmt = AV_PIX_FMT_YUVJ420P;
    codec->color_range = AVCOL_RANGE_JPEG;
    codec->time_base = {1, 25};
    codec->thread_count = 1;
    codec->flags |= AV_CODEC_FLAG_QSCALE;
    codec->global_quality = FF_QP2LAMBDA * jpegQuality;
    const PacketHandle packet(av_packet_alloc());
    if (avcodec_open2(codec.get(), nullptr, nullptr) < 0)
        return {};
    frame->quality = codec->global_quality;
    frame->pict_type = AV_PICTURE_TYPE_NONE;
    if (avcodec_send_frame(codec.get(), frame) < 0 ||
        avcodec_receive_packet(codec.get(), packet.get()) < 0)
        return {};
    return std::string(reinterpret_cast<const char *>(packet->data),
                       static_cast<std::size_t>(packet->size));
}

} // namespace ZorvaneService
