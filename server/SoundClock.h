// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include "server/RunClock.h"

namespace ZorvaneServer {

/// Gives sound its moments, beside the pictures whose stamps it shares. Where the two tell
/// different times it goes by its own durations and by when it comes.
class SoundClock
{
public:
    using Duration = Arrival::Duration;

    /// `pictures` has placed at least one.
    Duration place(const Arrival &sound, const RunClock &pictures);

private:
    std::optional<Arrival> latest;
    Duration last{0};
    unsigned run = 0;
};

} // namespace ZorvaneServer
