// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "server/Keeper.h"
#include "server/Recording.h"
#include "server/StreamQueue.h"

namespace ZorvaneServer {

/// Writes all streams of one archive, on a thread of its own. Whoever brings packets never waits
/// for the disk.
class Recorder
{
public:
    Recorder(const ArchiveFolder &folder, Catalogue &catalogue, Keeper &keeper,
             const std::vector<StreamId> &streams);
    ~Recorder();
    Recorder(const Recorder &) = delete;
    Recorder &operator=(const Recorder &) = delete;

    void start();
    /// Writes what it was given, finishes all segments and returns.
    void stop();
    /// A packet of the stream of that number; null when its connection has ended.
    void take(std::size_t stream, PacketPtr packet);
    /// Whether what comes in waits because the archive can't be written.
    bool isRefused() const { return refusing; }
    /// Pictures that weren't written for want of room or speed.
    std::int64_t dropped(std::size_t stream) const { return lanes[stream]->dropped; }

private:
    struct Lane {
        Lane(const StreamId &id, Recording writes) : stream(id), recording(std::move(writes)) {}

        const StreamId stream;
        Recording recording;
        StreamQueue queue; ///< under the mutex
        std::atomic<std::int64_t> dropped{0};
    };

    void run();
    bool drain(Lane &lane, std::unique_lock<std::mutex> &lock);
    void refused(Recording::Outcome outcome);
    bool hasWork() const;

    const ArchiveFolder &folder;
    Keeper &keeper;
    SegmentFinisher finisher;
    std::vector<std::unique_ptr<Lane>> lanes;
    std::atomic<bool> refusing{false};

    std::mutex mutex;
    std::condition_variable wake;
    bool isOver = false;
    bool isIdle = false; ///< the thread waits for work
    std::thread thread;
};

} // namespace ZorvaneServer
