// SPDX-License-Identifier: MIT
#pragma once

#include "server/LiveRing.h"
#include "server/WirePackets.h"
#include "service/MediaSource.h"

namespace ZorvaneServer {

/// A camera's pictures as they come. Between its connections there are none, and then it goes on.
class HouseLive : public ZorvaneService::LiveSource
{
public:
    explicit HouseLive(LiveRing &packets) : ring(packets), wire(packets.sound()) {}

    std::optional<std::int64_t> begin() override;
    Outcome read(ZorvaneService::MediaPacket *packet) override;

private:
    std::int64_t continued(const MediaPacket &packet);

    LiveRing &ring;
    LiveRing::Place place;
    WirePackets wire;
    std::optional<std::uint32_t> run;
    std::int64_t shiftMs = 0; ///< what moments of this run are told later than they were
    std::int64_t lastMs = 0;  ///< as told
    std::chrono::microseconds lastCame{0};
};

} // namespace ZorvaneServer
