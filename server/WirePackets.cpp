// SPDX-License-Identifier: MIT
#include "server/WirePackets.h"

#include "server/WireFormat.h"

namespace ZorvaneServer {

bool WirePackets::turn(const MediaPacket &packet, std::int64_t momentMs,
                       ZorvaneService::MediaPacket *out)
{
    if (packet.track != Track::Video)
        return false;
    change(packet.format);
    out->isPicture = true;
    out->keyFrame = packet.isKey;
    out->momentMs = momentMs;
    out->data.assign(packet.data.begin(), packet.data.end());
    out->format = wire;
    return true;
}

/// Each segment has a format of its own, which mostly says the same.
void WirePackets::change(const FormatPtr &next)
{
    if (next == format)
        return;
    if (!format || *next != *format)
        wire = std::make_shared<const ZorvaneService::MediaFormat>(wireFormat(*next));
    format = next;
}

} // namespace ZorvaneServer
