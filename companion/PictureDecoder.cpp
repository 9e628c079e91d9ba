// SPDX-License-Identifier: MIT
#include "companion/PictureDecoder.h"

namespace ZorvaneClient {
namespace Companion {

namespace {

/// Each further thread costs memory, processor time and one picture of delay.
constexpr int decoderThreads = 1;
/// 8K; what says to be larger is damaged.
constexpr int64_t maxCodedPixels = 8192 * 4608;

} // namespace

PictureDecoder::PictureDecoder() : frame(av_frame_alloc())
{
}

bool PictureDecoder::send(const QueuedPacket &item)
{
    if (item.format != format && !open(item.format))
        return false;
    return codec && avcodec_send_packet(codec.get(), item.packet.get()) >= 0;
}

void PictureDecoder::sendEnd()
{
    if (codec)
        avcodec_send_packet(codec.get(), nullptr);
}

const AVFrame *PictureDecoder::receive()
{
    if (!codec || avcodec_receive_frame(codec.get(), frame.get()) < 0)
        return nullptr;
    return frame.get();
}

void PictureDecoder::setHurry(bool hurry)
{
    if (codec)
        codec->skip_frame = hurry ? AVDISCARD_NONREF : AVDISCARD_DEFAULT;
}

bool PictureDecoder::open(const std::shared_ptr<const StreamFormat> &newFormat)
{
    format = newFormat;
    unusable = true;
    codec.reset();
    const AVCodec *decoder = avcodec_find_decoder(format->parameters->codec_id);
    if (!decoder)
        return false;
    CodecHandle opened(avcodec_alloc_context3(decoder));
    if (!opened || avcodec_parameters_to_context(opened.get(), format->parameters.get()) < 0)
        return false;
    opened->pkt_timebase = millisecondBase;
    opened->thread_count = decoderThreads;
    opened->max_pixels = maxCodedPixels;
    if (avcodec_open2(opened.get(), decoder, nullptr) < 0)
        return false;
    codec = std::move(opened);
    unusable = false;
    return true;
}

} // namespace Companion
} // namespace ZorvaneClient
