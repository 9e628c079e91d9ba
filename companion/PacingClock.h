// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <mutex>
#include <optional>

namespace ZorvaneClient {
namespace Companion {

/// Says when a position of the stream is due, in playing time. Shared by picture and sound.
class PacingClock
{
public:
    using Time = std::chrono::microseconds;

    /// From now on `position` is due at `time`, and the others around it.
    void anchor(Time position, Time time);

    bool isRunning() const;
    Time due(Time position) const;
    Time position(Time time) const;

private:
    mutable std::mutex mutex;
    std::optional<Time> delay;
};

} // namespace Companion
} // namespace ZorvaneClient
