// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <condition_variable>
#include <mutex>

namespace ZorvaneClient {
namespace Companion {

/// What the client commands, shared by all threads, and the player's clock. It stands still
/// while the client has paused the stream: all limits and pacing go by that. The wall doesn't
/// stand still, so what has to keep up with it asks for the same clock with its pauses.
class Controls
{
public:
    /// Playing time since the start of the program, without the pauses.
    using Time = std::chrono::microseconds;

    static constexpr int maxVolume = 100;

    void setPaused(bool paused);
    /// 0 to `maxVolume`; what lies outside is clamped.
    void setVolume(long volume);

    bool isPaused() const;
    int volume() const;
    Time now() const;
    /// The same, pauses counted.
    Time elapsed() const;

    void waitWhilePaused() const;
    /// Returns at once when `time` is over; waits for the end of a pause before it counts on.
    void waitUntil(Time time) const;
    /// Returns when there is a volume over 0 and no pause.
    void waitForSound() const;

private:
    using Clock = std::chrono::steady_clock;

    Time nowLocked() const;

    mutable std::mutex mutex;
    mutable std::condition_variable changed;
    bool paused = false;
    int currentVolume = 0;
    const Clock::time_point started = Clock::now();
    Clock::time_point origin = started; ///< later by all pauses that are over
    Clock::time_point pausedAt;
};

} // namespace Companion
} // namespace ZorvaneClient
