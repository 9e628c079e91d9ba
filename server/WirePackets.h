// SPDX-License-Identifier: MIT
#pragma once

#include "server/MediaPacket.h"
#include "server/SharedSound.h"
#include "server/WireFormat.h"
#include "service/MediaPacket.h"

namespace ZorvaneServer {

/// Turns the archive's and the cameras' packets into those that go over the wire, for one
/// receiver.
class WirePackets
{
public:
    explicit WirePackets(bool hasSound) : withSound(hasSound) {}
    /// With sound that others hear, too.
    explicit WirePackets(std::shared_ptr<SharedSound> ofAll)
        : withSound(true), shared(std::move(ofAll))
    {
    }

    /// Sound from before isn't wanted, or hardly.
    void beginSoundAt(std::int64_t momentMs) { soundFromMs = momentMs - soundLeadMs; }
    /// `momentMs` takes the place of the packet's own one; `number` is the packet's in its ring.
    /// False when nothing comes of it yet.
    bool turn(const MediaPacket &packet, std::int64_t momentMs, ZorvaneService::MediaPacket *out,
              std::uint64_t number = 0);
    /// What else came of the packets so far; asked before the next one is turned.
    bool takeMore(ZorvaneService::MediaPacket *out);

private:
    /// The first frames that are made need something before them.
    static constexpr std::int64_t soundLeadMs = 200;

    void change(const FormatPtr &next);
    void takeShared(const SharedSound::Frames &frames, std::int64_t laterMs);

    const bool withSound;
    const std::shared_ptr<SharedSound> shared;
    FormatPtr format;
    WireFormat wire;
    std::shared_ptr<const ZorvaneService::MediaFormat> told;
    std::unique_ptr<SoundConverter> converter; ///< of one receiver's own sound
    std::deque<SoundConverter::Frame> ready;   ///< of shared sound
    std::int64_t soundFromMs = 0;
};

} // namespace ZorvaneServer
