// SPDX-License-Identifier: MIT
#include "server/SegmentFinisher.h"

#include <algorithm>
#include <cerrno>
#include <cstring>

#include "server/Log.h"

namespace ZorvaneServer {

namespace {

constexpr auto glance = std::chrono::seconds(1);

} // namespace

SegmentFinisher::SegmentFinisher(const ArchiveFolder &archive, Catalogue &known)
    : folder(archive), catalogue(known)
{
}

SegmentFinisher::~SegmentFinisher()
{
    stop();
}

void SegmentFinisher::start()
{
    thread = std::thread([this] { run(); });
}

void SegmentFinisher::stop()
{
    {
        const std::lock_guard<std::mutex> lock(mutex);
        isOver = true;
    }
    wake.notify_one();
    if (thread.joinable())
        thread.join();
}

void SegmentFinisher::opened(const std::shared_ptr<SegmentWriter> &segment)
{
    const std::lock_guard<std::mutex> lock(mutex);
    open.push_back({segment, std::chrono::steady_clock::now() + syncInterval});
}

void SegmentFinisher::finish(const StreamId &stream, std::shared_ptr<SegmentWriter> segment)
{
    const std::lock_guard<std::mutex> lock(mutex);
    ended.push_back({stream, std::move(segment)});
    wake.notify_one();
}

/// The growing segments whose time has come; those that are gone are forgotten.
std::vector<std::shared_ptr<SegmentWriter>> SegmentFinisher::takeDue()
{
    open.erase(std::remove_if(open.begin(), open.end(),
                              [](const Open &one) { return one.segment.expired(); }),
               open.end());
    const auto now = std::chrono::steady_clock::now();
    std::vector<std::shared_ptr<SegmentWriter>> due;
    for (Open &one : open) {
        if (one.due <= now) {
            due.push_back(one.segment.lock());
            one.due = now + syncInterval;
        }
    }
    return due;
}

void SegmentFinisher::run()
{
    std::unique_lock<std::mutex> lock(mutex);
    for (;;) {
        wake.wait_for(lock, glance, [this] { return isOver || !ended.empty(); });
        const std::vector<Ended> work = std::exchange(ended, {});
        const auto due = takeDue();
        if (isOver && work.empty())
            return;
        lock.unlock();
        for (const Ended &one : work)
            complete(one);
        for (const auto &segment : due) {
            if (segment && !segment->sync())
                Log::say(std::string("cannot put a segment onto the disk: ") +
                         std::strerror(errno));
        }
        lock.lock();
    }
}

void SegmentFinisher::complete(const Ended &work)
{
    SegmentWriter &segment = *work.segment;
    const SegmentName part{segment.startMs(), {}};
    const SegmentName finished{segment.startMs(), segment.lengthMs()};
    const auto bytes = std::int64_t(segment.bytes());
    if (segment.finish() && folder.rename(work.stream, part, finished)) {
        catalogue.finish(work.stream, finished, bytes);
        return;
    }
    // The next start finishes what is left.
    Log::say("cannot finish " + folder.pathOf(work.stream, part) + ": " + std::strerror(errno));
    catalogue.abandon(work.stream, part.startMs);
}

} // namespace ZorvaneServer
