// SPDX-License-Identifier: MIT
#include "GUI/Player/Watchdog.h"

namespace ZorvaneClient {
namespace GUI {
namespace Player {
namespace Internal {

void Watchdog::started(const QDateTime &now)
{
    lastRequestTime = now;
    freezeTime = now;
    reloadsCount = 0;
    missedFileTime = {};
}

bool Watchdog::isFrozen(const QDateTime &now) const
{
    // The wall clock can be set back; a tile must not wait for as long as that.
    return qAbs(lastRequestTime.secsTo(now)) > requestTimeoutSecs &&
           qAbs(freezeTime.secsTo(now)) > freezeTimeoutSecs;
}

Watchdog::Verdict Watchdog::judge(TileState state, bool archivePlaying, bool childRuns,
                                  const QDateTime &now) const
{
    if (missedFileTime.isValid() && !archivePlaying && state != TileState::Paused)
        return qAbs(missedFileTime.secsTo(now)) < retryDelay.count() ? Verdict::Wait
                                                                     : Verdict::Play;
    const bool diedPlaying = !childRuns && state == TileState::Playing;
    if (archivePlaying || (state != TileState::Error && !diedPlaying))
        return Verdict::Wait;
    if (reloadsCount >= maxReloads)
        return Verdict::GiveUp;
    return isFrozen(now) ? Verdict::Reload : Verdict::Wait;
}

} // namespace Internal
} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
