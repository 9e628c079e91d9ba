// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <deque>

#include "server/MediaPacket.h"

namespace ZorvaneServer {

/// Packets on their way to the disk. It holds what comes in twenty seconds; then the oldest
/// pictures go, up to a key picture, so that what is left can be shown.
class StreamQueue
{
public:
    static constexpr auto longest = std::chrono::seconds(20);
    static constexpr std::size_t mostBytes = 64 * 1024 * 1024;

    /// How many pictures had to go. `now` is by a clock that only runs. A null packet says that
    /// what follows doesn't follow from what was before.
    int push(PacketPtr packet, std::chrono::microseconds now);
    bool isEmpty() const { return items.empty(); }
    const PacketPtr &front() const { return items.front().packet; }
    void pop();

private:
    struct Item {
        PacketPtr packet;
        std::chrono::microseconds since;
    };
    int dropGroup();

    std::deque<Item> items;
    std::size_t bytes = 0;
};

} // namespace ZorvaneServer
