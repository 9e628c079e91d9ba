// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>

#include "service/ArchiveCatalogue.h"
#include "service/MediaPacket.h"

namespace ZorvaneService {

/// Packets of one camera for one receiver, in the order in which they are sent: pictures as they
/// are decoded, before each the sound up to it. Used on one thread.
class MediaSource
{
public:
    enum class Outcome {
        Packet,
        NotYet, ///< ask again: what comes next is not there yet
        Lost,   ///< something can't be read, from the packet's moment on; ask again
        End
    };
    /// A read waits so long at most for what is still to come.
    static constexpr std::chrono::milliseconds longestWait{250};

    virtual ~MediaSource() = default;

    /// Fills `packet`, whose memory is used again, when there is one.
    virtual Outcome read(MediaPacket *packet) = 0;
};

class LiveSource : public MediaSource
{
public:
    /// Goes to the newest key frame. The moment from which on pictures are to be seen: those
    /// before it are needed to decode, and sent at once. Nothing when the camera sends none.
    virtual std::optional<std::int64_t> begin() = 0;

    /// Gives each packet when it comes from the camera. A receiver that has fallen back too far
    /// is sent on to a later key frame.
    Outcome read(MediaPacket *packet) override = 0;
};

class ArchiveSource : public MediaSource
{
public:
    /// Goes to the key frame in `record` that the picture at `momentMs` needs, or to the first
    /// one after it. The key frame's moment; nothing when there is none.
    virtual std::optional<std::int64_t> seek(const Record &record, std::int64_t momentMs) = 0;

    /// Gives each packet at once; behind the end of a record, what another one begins with.
    Outcome read(MediaPacket *packet) override = 0;
};

} // namespace ZorvaneService
