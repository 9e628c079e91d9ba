// SPDX-License-Identifier: MIT
#include "server/WirePackets.h"

namespace ZorvaneServer {

bool WirePackets::turn(const MediaPacket &packet, std::int64_t momentMs,
                       ZorvaneService::MediaPacket *out)
{
    change(packet.format);
    if (packet.track != Track::Video) {
        if (converter && momentMs >= soundFromMs)
            converter->put(packet.data, momentMs);
        return takeMore(out);
    }
    out->isPicture = true;
    out->keyFrame = packet.isKey;
    out->momentMs = momentMs;
    wire.write(packet, &out->data);
    out->format = told;
    return true;
}

bool WirePackets::takeMore(ZorvaneService::MediaPacket *out)
{
    SoundConverter::Frame frame;
    if (!converter || !converter->take(&frame))
        return false;
    out->isPicture = false;
    out->keyFrame = false;
    out->momentMs = frame.momentMs;
    out->data = std::move(frame.data);
    out->format = told;
    return true;
}

/// Each segment has a format of its own, which mostly says the same.
void WirePackets::change(const FormatPtr &next)
{
    if (next == format)
        return;
    if (!format || *next != *format) {
        converter = withSound ? SoundConverter::of(*next) : nullptr;
        wire = WireFormat::of(*next);
        if (converter)
            wire.told.sound = ZorvaneService::MediaFormat::Sound::Mp3;
        told = std::make_shared<const ZorvaneService::MediaFormat>(wire.told);
    }
    format = next;
}

} // namespace ZorvaneServer
