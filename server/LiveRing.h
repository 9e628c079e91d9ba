// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>

#include "server/MediaPacket.h"
#include "server/SharedSound.h"

namespace ZorvaneServer {

/// The newest packets of a stream, for all who watch it. Whoever falls back too far is sent on to
/// the newest key picture; nobody waits for anybody.
class LiveRing
{
public:
    /// A key picture and those that need it are a group.
    static constexpr int mostGroups = 2;
    static constexpr std::size_t mostBytes = 8 * 1024 * 1024;
    static constexpr std::chrono::milliseconds farthestBack{3000};

    /// What one receiver has got to.
    struct Place {
        std::uint64_t next = 0;
        bool awaitsKey = false;
    };

    /// Null when the connection has ended: nothing that follows belongs to what was before.
    void put(PacketPtr packet);

    /// Goes to the newest key picture. The moment of the newest picture; nothing when none came.
    std::optional<std::int64_t> begin(Place *place) const;
    /// What comes next; waits for it at most so long, and then gives null.
    PacketPtr take(Place *place, std::chrono::milliseconds longestWait);
    /// Null while the camera isn't connected.
    PacketPtr newestKey() const;
    /// What its sound is made into for all who watch; it ends with the last of them.
    std::shared_ptr<SharedSound> sound();

private:
    std::uint64_t end() const { return first + packets.size(); }
    void pop();

    mutable std::mutex mutex;
    std::condition_variable wake;
    std::deque<PacketPtr> packets;
    std::uint64_t first = 1; ///< number of the first one
    std::size_t bytes = 0;
    int groups = 0;
    PacketPtr key; ///< the newest one; kept when its group is too large
    std::uint64_t keyNumber = 0;
    std::int64_t newestMs = 0; ///< of the pictures
    std::weak_ptr<SharedSound> sharedSound;
};

} // namespace ZorvaneServer
