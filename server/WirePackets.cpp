// SPDX-License-Identifier: MIT
#include "server/WirePackets.h"

#include "server/WireFormat.h"

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
    out->data.assign(packet.data.begin(), packet.data.end());
    out->format = wire;
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
    out->format = wire;
    return true;
}

/// Each segment has a format of its own, which mostly says the same.
void WirePackets::change(const FormatPtr &next)
{
    if (next == format)
        return;
    if (!format || *next != *format) {
        converter = withSound ? SoundConverter::of(*next) : nullptr;
        auto changed = wireFormat(*next);
        if (converter)
            changed.sound = ZorvaneService::MediaFormat::Sound::Mp3;
        wire = std::make_shared<const ZorvaneService::MediaFormat>(std::move(changed));
    }
    format = next;
}

} // namespace ZorvaneServer
