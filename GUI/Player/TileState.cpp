// SPDX-License-Identifier: MIT
#include "GUI/Player/TileState.h"

namespace ZorvaneClient {
namespace GUI {
namespace Player {
namespace Internal {

namespace {

// Of the numbers by which the child names its state.
const QLatin1String vlcPaused("4");
const QLatin1String vlcError("7");

} // namespace

void TileState::told(const QString &vlcState)
{
    if (isFailure(vlcState))
        value = Error;
    else if (vlcState == vlcPaused)
        value = Paused;
}

bool TileState::isFailure(const QString &vlcState)
{
    return vlcState == vlcError;
}

bool TileState::isPlaying(bool archivePlaying) const
{
    if (!archivePlaying)
        return value == Playing;
    return value != Idle && value != Stopping && value != Error;
}

const char *TileState::name() const
{
    switch (value) {
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
    }
    return "Unknown";
}

} // namespace Internal
} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
