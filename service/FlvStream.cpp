// SPDX-License-Identifier: MIT
#include "service/FlvStream.h"

#include <algorithm>

#include "service/FlvWriter.h"

namespace ZorvaneService {

FlvStream::FlvStream(BodySink &receiver, int playSpeed, std::int64_t zero)
    : sink(receiver), speed(playSpeed), zeroMs(zero)
{
}

bool FlvStream::send(const MediaPacket &packet)
{
    if (packet.format != format && !change(packet))
        return false;
    if (!packet.isPicture) {
        if (packet.momentMs >= zeroMs)
            appendFlvSound(*format, stamp(packet.momentMs), packet.data, &waiting);
        return true;
    }
    const std::int64_t decodedMs = decoded.place(packet.momentMs);
    const std::uint32_t time = stamp(decodedMs);
    const std::uint32_t shown = std::max(stamp(packet.momentMs), time);
    appendFlvPicture(time, shown - time, packet.keyFrame, packet.data, &waiting);
    pictureMs = lastPictureMs > 0 ? packet.momentMs - lastPictureMs : 0;
    lastPictureMs = packet.momentMs;
    return flush();
}

void FlvStream::join(std::int64_t endMs, std::int64_t momentMs)
{
    zeroMs += momentMs - std::max(endMs, lastPictureMs + pictureMs);
    lastPictureMs = 0;
    waiting.clear();
}

/// Tells the format that begins with `packet`.
bool FlvStream::change(const MediaPacket &packet)
{
    if (!format)
        appendFlvHeader(*packet.format, &waiting);
    format = packet.format;
    appendFlvFormat(*format, stamp(packet.momentMs), &waiting);
    return flush();
}

bool FlvStream::flush()
{
    const bool good = sink.write(waiting.data(), waiting.size());
    waiting.clear();
    return good;
}

std::uint32_t FlvStream::stamp(std::int64_t momentMs) const
{
    return static_cast<std::uint32_t>(std::max<std::int64_t>(momentMs - zeroMs, 0) / speed);
}

} // namespace ZorvaneService
