// SPDX-License-Identifier: MIT
#include "companion/PictureDecoder.h"

#include "companion/Decoder.h"

namespace ZorvaneClient {
namespace Companion {

PictureDecoder::PictureDecoder() : frame(av_frame_alloc())
{
}

void PictureDecoder::send(const QueuedPacket &item)
{
    if (item.format != format)
        open(item.format);
    if (codec)
        avcodec_send_packet(codec.get(), item.packet.get());
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

void PictureDecoder::open(const std::shared_ptr<const StreamFormat> &newFormat)
{
    format = newFormat;
    codec = openDecoder(*format->parameters);
    unusable = !codec;
}

} // namespace Companion
} // namespace ZorvaneClient
