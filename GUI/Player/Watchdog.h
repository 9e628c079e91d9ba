// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>

#include "GUI/Player/TileState.h"

namespace ZorvaneClient {
namespace GUI {
namespace Player {
namespace Internal {

/// Decides when a live tile starts its child anew.
/// A child that stays but delivers nothing is not noticed, nor one that ends before its first
/// frame or in a pause.
struct Watchdog {
    enum class Verdict { Wait, Reload, GiveUp };

    QDateTime lastRequestTime; ///< when the child was last started
    int requestTimeoutSecs = 3;
    QDateTime freezeTime; ///< when the child was last started or last reported an error
    int freezeTimeoutSecs = 10;
    int reloadsCount = 0; ///< in a row, by the watchdog
    int maxReloads = 3;

    /// A child was started, by whomever.
    void started(const QDateTime &now);
    /// A child was started by the watchdog, as often in a row as that.
    void reloaded(int count) { reloadsCount = count; }
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
