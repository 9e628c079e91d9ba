// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <condition_variable>
#include <mutex>
#include <thread>

#include "server/ArchiveFolder.h"
#include "server/Catalogue.h"
#include "server/Configuration.h"
#include "server/Inventory.h"

namespace ZorvaneServer {

/// Removes the oldest segments by the rules, on a thread of its own: every ten seconds, after
/// so much has been written that the rules may be broken, and at once when there is no room. A
/// clock that was set wrong doesn't make it remove anything for its age: it has to tell the same
/// for a day first, or the archive that there was a yesterday. Shares of the disk are those of
/// the one that is there now.
class Keeper
{
public:
    static constexpr auto interval = std::chrono::seconds(10);

    Keeper(const ArchiveFolder &folder, Catalogue &catalogue, Configuration::Archive rules);
    ~Keeper();
    Keeper(const Keeper &) = delete;
    Keeper &operator=(const Keeper &) = delete;

    /// Lists what the archive holds, which it does again whenever another disk is there. Before
    /// the start.
    void open() { inventory.take(); }
    void start();
    void stop();
    /// So much has been written.
    void wrote(std::int64_t bytes);
    /// The disk is full, whatever the rules say of it.
    void needsRoom();

    /// One round; `least` segments go in any case, as far as there are any. What can't be removed
    /// stays known, and the next ones go in its place, unless there are many of that kind. How
    /// many went.
    int round(std::int64_t nowMs, int least);
    /// How much the archive may hold on the disk that is there. Any thread may ask.
    std::int64_t roomBytes() const;

private:
    void run();
    void measure();
    bool knowsAge(std::int64_t nowMs);

    const ArchiveFolder &folder;
    Catalogue &catalogue;
    Inventory inventory;
    const Configuration::Archive configured;
    std::atomic<std::int64_t> unchecked{0}; ///< bytes written since the last round
    std::atomic<std::int64_t> checkEvery{0};
    bool isMeasured = false;
    bool isHindered = false; ///< what couldn't be removed has been said
    std::int64_t latestRoundMs = 0;
    std::int64_t steadySinceMs = 0; ///< the clock hasn't jumped since

    std::mutex mutex;
    std::condition_variable wake;
    bool isFull = false;
    bool isDue = false;
    bool isOver = false;
    std::thread thread;
};

} // namespace ZorvaneServer
