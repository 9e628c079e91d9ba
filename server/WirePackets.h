// SPDX-License-Identifier: MIT
#pragma once

#include "server/MediaPacket.h"
#include "service/MediaPacket.h"

namespace ZorvaneServer {

/// Turns the archive's and the cameras' packets into those that go over the wire, for one
/// receiver.
class WirePackets
{
public:
    explicit WirePackets(bool hasSound) : withSound(hasSound) {}

    /// `momentMs` takes the place of the packet's own one. False when nothing is sent of it.
    bool turn(const MediaPacket &packet, std::int64_t momentMs, ZorvaneService::MediaPacket *out);

private:
    void change(const FormatPtr &next);

    const bool withSound;
    FormatPtr format;
    std::shared_ptr<const ZorvaneService::MediaFormat> wire;
};

} // namespace ZorvaneServer
