// SPDX-License-Identifier: MIT
#pragma once

#include "server/StampFilter.h"

namespace ZorvaneServer {

/// What is known of a packet's time as it comes in.
struct Arrival {
    using Duration = std::chrono::microseconds;

    Duration stamp;  ///< the camera's
    Duration steady; ///< by a clock that only runs
    Duration wall;   ///< since the epoch
    bool isKey = false;
};

/// Gives pictures their moments: the start of a run and the camera's durations from there,
/// drawn towards the steady clock so slowly that nobody sees it. A connection, a jump of the
/// stamps and a step of the wall clock begin a new run, at a key picture, so that a segment can
/// begin there; until then the moments go on as before.
class RunClock
{
public:
    using Duration = Arrival::Duration;

    static constexpr double mostDrawn = 500e-6;
    static constexpr Duration farthest = std::chrono::seconds(2);

    /// The first picture must be a key picture. Moments rise within a run.
    Duration place(const Arrival &picture);
    /// Runs so far.
    unsigned runs() const { return count; }

    /// Of the latest picture.
    Duration moment() const { return last; }
    const Arrival &picture() const { return latest; }

private:
    void begin(const Arrival &picture);
    bool hasStepped(const Arrival &picture) const;
    void follow(const Arrival &picture);

    StampFilter filter;
    unsigned count = 0;
    bool endsAtKey = false;
    Arrival first{};
    Arrival latest{};
    Duration position{0}; ///< since the run's start
    Duration last{0};
    Duration behindSince = Duration::max();
};

} // namespace ZorvaneServer
