// SPDX-License-Identifier: MIT
#include "server/Recorder.h"

#include <utility>

#include "server/Log.h"
#include "server/WallClock.h"

namespace ZorvaneServer {

namespace {

// A moment in which more packets come: waking for each of them would cost more than writing.
constexpr auto gather = std::chrono::milliseconds(40);
constexpr auto retryAfter = std::chrono::milliseconds(200);
// The last tries of a program that ends.
constexpr int lastTries = 10;

} // namespace

Recorder::Recorder(const ArchiveFolder &archive, Catalogue &catalogue, Keeper &archiveKeeper,
                   const std::vector<StreamId> &streams)
    : folder(archive), keeper(archiveKeeper), finisher(archive, catalogue)
{
    const int count = static_cast<int>(streams.size());
    for (int i = 0; i < count; ++i) {
        const StreamId &stream = streams[static_cast<std::size_t>(i)];
        const auto rule = [this, i, count] {
            return SegmentRule::of(i, count, keeper.roomBytes());
        };
        lanes.push_back(
            std::make_unique<Lane>(stream, Recording(stream, rule, archive, catalogue, finisher)));
    }
}

Recorder::~Recorder()
{
    stop();
}

void Recorder::start()
{
    finisher.start();
    thread = std::thread([this] { run(); });
}

void Recorder::stop()
{
    {
        const std::lock_guard<std::mutex> lock(mutex);
        isOver = true;
    }
    wake.notify_one();
    if (thread.joinable())
        thread.join();
    finisher.stop();
}

void Recorder::take(std::size_t stream, PacketPtr packet)
{
    Lane &lane = *lanes[stream];
    int dropped = 0;
    bool wakes = false;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        dropped = lane.queue.push(std::move(packet), steadyTime());
        wakes = std::exchange(isIdle, false);
    }
    if (wakes)
        wake.notify_one();
    if (dropped == 0)
        return;
    lane.dropped += dropped;
    Log::say(lane.stream.text() + ": " + std::to_string(dropped) +
             " pictures dropped, which the disk didn't take in time");
}

bool Recorder::hasWork() const
{
    for (const auto &lane : lanes) {
        if (!lane->queue.isEmpty())
            return true;
    }
    return false;
}

void Recorder::run()
{
    std::unique_lock<std::mutex> lock(mutex);
    int triesLeft = lastTries;
    while (!isOver || (hasWork() && triesLeft > 0)) {
        isIdle = !hasWork();
        wake.wait(lock, [this] { return isOver || hasWork(); });
        wake.wait_for(lock, gather, [this] { return isOver; });
        bool wroteAll = true;
        for (const auto &lane : lanes)
            wroteAll &= drain(*lane, lock);
        if (wroteAll) {
            if (refusing.exchange(false))
                Log::say("the archive takes pictures again");
            continue;
        }
        triesLeft -= isOver ? 1 : 0;
        lock.unlock();
        std::this_thread::sleep_for(retryAfter);
        lock.lock();
    }
    for (const auto &lane : lanes)
        lane->recording.close();
}

/// False when something was refused, which then waits in its queue.
bool Recorder::drain(Lane &lane, std::unique_lock<std::mutex> &lock)
{
    while (!lane.queue.isEmpty()) {
        const PacketPtr packet = lane.queue.front();
        lock.unlock();
        auto outcome = Recording::Outcome::Written;
        if (packet)
            outcome = lane.recording.write(*packet);
        else
            lane.recording.close();
        keeper.wrote(lane.recording.takeBytes());
        if (outcome != Recording::Outcome::Written)
            refused(outcome);
        lock.lock();
        if (outcome != Recording::Outcome::Written)
            return false;
        // It may have been dropped meanwhile.
        if (!lane.queue.isEmpty() && lane.queue.front() == packet)
            lane.queue.pop();
    }
    return true;
}

void Recorder::refused(Recording::Outcome outcome)
{
    if (outcome == Recording::Outcome::NoRoom)
        keeper.needsRoom();
    if (refusing.exchange(true))
        return;
    if (outcome == Recording::Outcome::NoRoom)
        Log::say("the disk of the archive is full");
    else if (!folder.isReady())
        Log::say("nothing is recorded: the archive's folder has no " +
                 std::string(ArchiveFolder::marker) + ". Is its disk mounted?");
    else
        Log::say("the archive cannot be written");
}

} // namespace ZorvaneServer
