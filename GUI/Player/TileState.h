// SPDX-License-Identifier: MIT
#pragma once

namespace ZorvaneClient {
namespace GUI {
namespace Player {
namespace Internal {

/// What a tile's player is doing.
enum TileState : int {
    Idle = 0,
    Starting = 1,  ///< child started, no frame seen yet
    Buffering = 2, ///< known by name only
    Playing = 3,
    Paused = 4,
    Stopping = 5, ///< while the child is being ended
    Error = 255,  ///< the child reported an error
};

/// The word for a state in the log.
const char *tileStateName(int state);

/// True while a child is thought to be there.
bool hasChild(int state);

} // namespace Internal
} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
