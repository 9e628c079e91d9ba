// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>

#include <chrono>

#include "GUI/Player/TileState.h"

namespace ZorvaneClient {
namespace GUI {
namespace Player {
namespace Internal {

/// Decides when a live tile starts its child anew.
/// A child that stays but delivers nothing is not noticed, nor one that ends before its first
/// frame or in a pause.
struct Watchdog {
    enum class Verdict { Wait, Play, Reload, GiveUp };
    static constexpr std::chrono::seconds retryDelay{30};

    QDateTime lastRequestTime; ///< when the child was last started
    int requestTimeoutSecs = 3;
    QDateTime freezeTime; ///< when the child was last started or last reported an error
    int freezeTimeoutSecs = 10;
    int reloadsCount = 0; ///< in a row, by the watchdog
    int maxReloads = 3;
    QDateTime missedFileTime; ///< when no child could be started for want of a frame file

    /// A child was started, by whomever.
    void started(const QDateTime &now);
    /// A child was started by the watchdog, as often in a row as that.
    void reloaded(int count) { reloadsCount = count; }
    /// None was started, since there was no frame file; it is tried again, unless the user stops.
    void missedFile(const QDateTime &now) { missedFileTime = now; }
    void stopped() { missedFileTime = {}; }
    /// The child reported an error.
    void failed(const QDateTime &now) { freezeTime = now; }
    bool isFrozen(const QDateTime &now) const;
    /// What to do at a tick.
    Verdict judge(TileState state, bool archivePlaying, bool childRuns, const QDateTime &now) const;
};

} // namespace Internal
} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
