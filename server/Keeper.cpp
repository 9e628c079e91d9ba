// SPDX-License-Identifier: MIT
#include "server/Keeper.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <utility>

#include "server/Log.h"
#include "server/UtcTime.h"
#include "server/WallClock.h"

namespace ZorvaneServer {

namespace {

// Free space may fall so far below the rule before it is looked at.
constexpr std::int64_t checksPerDisk = 200;
constexpr std::int64_t leastCheck = std::int64_t(1) << 20;
constexpr std::int64_t mostCheck = std::int64_t(64) << 20;
// Rounds are seconds apart, unless the machine slept or its clock was set.
constexpr std::int64_t longestPauseMs = 60 * minuteMs;
// A single file may be somebody's; where this many can't be removed, it is the disk that refuses.
constexpr std::size_t mostRefused = 8;

} // namespace

Keeper::Keeper(const ArchiveFolder &archiveFolder, Catalogue &known, Configuration::Archive rules)
    : folder(archiveFolder)
    , catalogue(known)
    , inventory(archiveFolder, known)
    , configured(std::move(rules))
{
}

Keeper::~Keeper()
{
    stop();
}

void Keeper::start()
{
    thread = std::thread([this] { run(); });
}

void Keeper::stop()
{
    {
        const std::lock_guard<std::mutex> lock(mutex);
        isOver = true;
    }
    wake.notify_one();
    if (thread.joinable())
        thread.join();
}

void Keeper::wrote(std::int64_t bytes)
{
    if (unchecked.fetch_add(bytes) + bytes < checkEvery)
        return;
    unchecked = 0;
    const std::lock_guard<std::mutex> lock(mutex);
    isDue = true;
    wake.notify_one();
}

void Keeper::needsRoom()
{
    const std::lock_guard<std::mutex> lock(mutex);
    isFull = true;
    isDue = true;
    wake.notify_one();
}

void Keeper::run()
{
    std::unique_lock<std::mutex> lock(mutex);
    while (!isOver) {
        const int least = isFull ? 1 : 0;
        isFull = false;
        isDue = false;
        lock.unlock();
        if (inventory.follow())
            isMeasured = false;
        round(wallMs(), least);
        lock.lock();
        wake.wait_for(lock, interval, [this] { return isOver || isDue; });
    }
}

/// Names don't tell how large files are; that is only asked for where a rule needs it.
void Keeper::measure()
{
    if (isMeasured || !configured.bytes)
        return;
    for (const auto &[stream, name] : catalogue.unmeasured())
        catalogue.setBytes(stream, name, folder.sizeOf(stream, name));
    isMeasured = true;
}

bool Keeper::knowsAge(std::int64_t nowMs)
{
    if (nowMs < latestRoundMs || nowMs - latestRoundMs > longestPauseMs)
        steadySinceMs = nowMs;
    latestRoundMs = nowMs;
    return nowMs - steadySinceMs >= dayMs || catalogue.holdsAny(nowMs - 2 * dayMs, nowMs - dayMs);
}

std::int64_t Keeper::roomBytes() const
{
    const std::int64_t diskBytes = folder.room().totalBytes;
    return configured.rules(diskBytes).roomBytes(diskBytes);
}

int Keeper::round(std::int64_t nowMs, int least)
{
    if (!folder.isReady())
        return 0;
    checkEvery = std::clamp(folder.room().totalBytes / checksPerDisk, leastCheck, mostCheck);
    measure();
    const bool isAgeKnown = knowsAge(nowMs);
    int gone = 0;
    std::vector<Catalogue::Place> refused;
    while (const auto oldest = catalogue.oldest(refused)) {
        const auto &[stream, segment] = *oldest;
        // Both of one look: another disk may have been mounted since the last one.
        const ArchiveFolder::Room room = folder.room();
        KeepRules rules = configured.rules(room.totalBytes);
        if (!isAgeKnown)
            rules.days.reset();
        const KeepRules::State state{nowMs, segment.endMs, catalogue.knownBytes(), room.freeBytes};
        if (gone >= least && !rules.mustGo(state))
            break;
        if (folder.remove(stream, segment.name)) {
            catalogue.remove(stream, segment.name);
            ++gone;
            continue;
        }
        if (!std::exchange(isHindered, true))
            Log::say("cannot remove " + folder.pathOf(stream, segment.name) + ": " +
                     std::strerror(errno));
        refused.emplace_back(stream, segment.name);
        if (refused.size() == mostRefused)
            return gone;
    }
    if (gone > 0 && refused.empty())
        isHindered = false;
    return gone;
}

} // namespace ZorvaneServer
