// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace ZorvaneClient {
namespace GUI {
namespace Player {
namespace Internal {

/// What a tile's player is doing. Only the events below move it.
class TileState
{
public:
    enum Value : int {
        Idle = 0,
        Starting = 1,  ///< child started, no frame seen yet
        Buffering = 2, ///< known by name only
        Playing = 3,
        Paused = 4,
        Stopping = 5, ///< while the child is being ended
        Error = 255,  ///< the child reported an error
    };

    TileState() = default;
    explicit TileState(Value initial) : value(initial) {}

    // The events. Each leads to one state from every other, but for frame() and told().

    /// A child was started.
    void started() { value = Starting; }
    /// Frames came: what starts now plays. They don't end a pause.
    void frame() { value = value == Starting ? Playing : value; }
    void paused() { value = Paused; }
    void unpaused() { value = Playing; }
    /// The child said its own state: of those only an error and a pause count.
    void told(const QString &vlcState);
    /// The child is being ended.
    void stopping() { value = Stopping; }
    /// The child has ended.
    void stopped() { value = Idle; }

    bool operator==(Value other) const { return value == other; }
    bool operator!=(Value other) const { return value != other; }
    /// Live: frames arrive. Archive: there is a child that has not failed.
    bool isPlaying(bool archivePlaying) const;
    /// The word for the log.
    const char *name() const;

    /// True if a child that says `vlcState` has failed.
    static bool isFailure(const QString &vlcState);

private:
    Value value = Idle;
};

} // namespace Internal
} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
