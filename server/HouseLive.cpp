// SPDX-License-Identifier: MIT
#include "server/HouseLive.h"

#include <algorithm>

#include "server/WallClock.h"

namespace ZorvaneServer {

std::optional<std::int64_t> HouseLive::begin()
{
    run.reset();
    shiftMs = 0;
    const auto seenFromMs = ring.begin(&place);
    wire.beginSoundAt(seenFromMs.value_or(0));
    return seenFromMs;
}

HouseLive::Outcome HouseLive::read(ZorvaneService::MediaPacket *packet)
{
    if (wire.takeMore(packet))
        return Outcome::Packet;
    while (const PacketPtr next = ring.take(&place, longestWait)) {
        if (wire.turn(*next, continued(*next), packet, place.next - 1))
            return Outcome::Packet;
    }
    return Outcome::NotYet;
}

/// Moments of different runs don't follow from each other: a receiver's go by when they come.
std::int64_t HouseLive::continued(const MediaPacket &packet)
{
    const auto now = steadyTime();
    if (run && *run != packet.run)
        shiftMs = lastMs + (now - lastCame) / std::chrono::milliseconds(1) - packet.momentMs;
    run = packet.run;
    const std::int64_t momentMs = packet.momentMs + shiftMs;
    if (packet.track == Track::Video) {
        lastMs = momentMs;
        lastCame = now;
    }
    return momentMs;
}

} // namespace ZorvaneServer
