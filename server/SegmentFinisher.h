// SPDX-License-Identifier: MIT
#pragma once

#include <condition_variable>
#include <memory>
#include <mutex>
#include <thread>
#include <vector>

#include "server/ArchiveFolder.h"
#include "server/Catalogue.h"

namespace ZorvaneServer {

/// Puts segments onto the disk, on a thread of its own, so that who writes them never waits for
/// it: the growing ones every eight seconds, the finished ones at once, with their names.
class SegmentFinisher
{
public:
    static constexpr auto syncInterval = std::chrono::seconds(8);

    SegmentFinisher(const ArchiveFolder &folder, Catalogue &catalogue);
    ~SegmentFinisher();
    SegmentFinisher(const SegmentFinisher &) = delete;
    SegmentFinisher &operator=(const SegmentFinisher &) = delete;

    void start();
    /// Finishes what it was given before it returns.
    void stop();
    void opened(const std::shared_ptr<SegmentWriter> &segment);
    /// Nothing is appended to the segment any more.
    void finish(const StreamId &stream, std::shared_ptr<SegmentWriter> segment);

private:
    struct Open {
        std::weak_ptr<SegmentWriter> segment;
        std::chrono::steady_clock::time_point due;
    };
    struct Ended {
        StreamId stream;
        std::shared_ptr<SegmentWriter> segment;
    };

    void run();
    std::vector<std::shared_ptr<SegmentWriter>> takeDue();
    void complete(const Ended &work);

    const ArchiveFolder &folder;
    Catalogue &catalogue;
    std::mutex mutex;
    std::condition_variable wake;
    std::vector<Open> open;
    std::vector<Ended> ended;
    bool isOver = false;
    std::thread thread;
};

} // namespace ZorvaneServer
