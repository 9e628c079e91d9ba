// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <optional>

#include "companion/AvHandles.h"

namespace ZorvaneClient {
namespace Companion {

/// How the packets of one elementary stream are to be decoded.
struct StreamFormat {
    int index = -1;
    CodecParametersHandle parameters;
};

struct QueuedPacket {
    PacketHandle packet; ///< its times are milliseconds, and all set
    std::shared_ptr<const StreamFormat> format;
    std::chrono::milliseconds droppedBefore{0}; ///< of the stream, between it and the one before
};

/// Packets on their way from the reading thread to a decoding one.
class PacketQueue
{
public:
    using Duration = std::chrono::milliseconds;

    /// What a full queue does with one packet more.
    enum class Overflow {
        Wait,     ///< the reader waits, so the server feels that nobody reads
        DropToKey ///< all is dropped, and what follows up to the next key packet too
    };
    enum class Taken { Packet, Nothing, End };
    enum class End { None, Finished, Failed };

    struct Limits {
        size_t bytes;
        Duration span;
        Overflow overflow;
    };

    explicit PacketQueue(Limits limits);

    void push(QueuedPacket item);
    /// No more packets come; those waiting are still handed out.
    void finish(End end);
    void clear();

    Taken pop(QueuedPacket &item, Duration patience);

    bool isEmpty() const;
    /// From the packet handed out last to the newest one.
    Duration span() const;
    End end() const;

    /// Drops what stands before the last key packet that is at most `reach` ahead; nothing
    /// without one.
    void dropToKey(Duration reach);

private:
    struct Entry {
        QueuedPacket item;
        Duration step;
    };

    bool isFull() const;
    Duration stepOf(const QueuedPacket &item);
    void removeFirst();
    void removeAll();

    const Limits limits;
    mutable std::mutex mutex;
    std::condition_variable changed;
    std::deque<Entry> entries;
    size_t bytes = 0;
    Duration waiting{0};
    Duration dropped{0};
    bool skipping = false;
    std::optional<int64_t> lastTime;
    End ending = End::None;
};

} // namespace Companion
} // namespace ZorvaneClient
