// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <optional>

#include "companion/PacingClock.h"

namespace ZorvaneClient {
namespace Companion {

/// Decides when a picture is shown and which one isn't. A live stream is kept close to its
/// newest picture, any other one is played in its own time. All times are playing time.
class Pacing
{
public:
    using Time = PacingClock::Time;

    /// What the stream has brought behind the picture in question.
    struct Backlog {
        std::chrono::milliseconds span{0};
        bool isEmpty = true;
        bool ranDry = true; ///< there was nothing to decode at some time since the last picture
    };
    enum class Action { Show, Skip, Wait };
    struct Answer {
        Action action = Action::Show;
        Time until{0};           ///< when to ask again; with Wait only
        bool isVeryLate = false; ///< the decoder should leave out what it can
        /// How far ahead in the backlog a key frame to go on with may be, if one is wanted.
        std::optional<std::chrono::milliseconds> jump;
    };

    explicit Pacing(bool liveStream) : live(liveStream) {}

    /// A picture came out of the decoder.
    Answer arrived(Time position, Time now, const Backlog &backlog);
    /// The same picture after a wait, or a part of one.
    Answer waited(Time position, Time now, const Backlog &backlog);
    /// The picture is to be seen. Without this it doesn't count as shown.
    void shown(Time position, Time now);

    bool hasShown() const { return shownAt.has_value(); }
    /// When the last picture was shown, and its position; 0 before the first.
    Time lastShown() const { return shownAt.value_or(Time(0)); }
    Time lastPosition() const { return shownPosition; }
    /// Where the stream is by the clock; past the picture shown last it runs on a little only.
    Time idlePosition(Time now) const;

    /// For the sound, which goes by it on a thread of its own.
    const PacingClock &clock() const { return dueClock; }

private:
    void followLive(Time position, Time now, const Backlog &backlog, Answer *answer);
    bool isSkipped(Time position, Time now, const Backlog &backlog) const;
    void showWhenDue(Time position, Time now, Answer *answer) const;

    const bool live;
    PacingClock dueClock;
    std::optional<Time> shownAt;
    Time shownPosition{0};
    Time runOn{0};
};

} // namespace Companion
} // namespace ZorvaneClient
