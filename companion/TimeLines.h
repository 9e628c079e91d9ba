// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <optional>

namespace ZorvaneClient {
namespace Companion {

/// Which positions the client is told: they never fall, and come neither too often nor too
/// seldom. Positions and times are playing time.
class TimeLines
{
public:
    using Time = std::chrono::microseconds;

    enum class Beside { Frame, Nothing };

    /// What to tell now of `position`, which comes with a frame or alone, if anything.
    std::optional<std::chrono::milliseconds> next(Time position, Time now, Beside beside);
    /// When a line without a frame is due; a moment from now at least.
    Time due(Time now) const;

private:
    std::optional<std::chrono::milliseconds> toldPosition;
    Time lastTold{0};
};

} // namespace Companion
} // namespace ZorvaneClient
