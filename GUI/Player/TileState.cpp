// SPDX-License-Identifier: MIT
#include "GUI/Player/TileState.h"

namespace ZorvaneClient {
namespace GUI {
namespace Player {
namespace Internal {

const char *tileStateName(int state)
{
    switch (state) {
    case Idle:
        return "Idle";
    case Starting:
        return "Starting";
    case Buffering:
        return "Buffering";
    case Playing:
        return "Playing";
    case Paused:
        return "Paused";
    case Stopping:
        return "Stopping";
    case Error:
        return "Error";
    default:
        return "Unknown";
    }
}

bool hasChild(int state)
{
    return state != Idle && state != Stopping && state != Error;
}

} // namespace Internal
} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
