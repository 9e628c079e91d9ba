// SPDX-License-Identifier: MIT
#include "companion/Controls.h"

#include <algorithm>

namespace ZorvaneClient {
namespace Companion {

void Controls::setPaused(bool pause)
{
    const std::lock_guard<std::mutex> lock(mutex);
    if (pause == paused)
        return;
    paused = pause;
    if (pause)
        pausedAt = Clock::now();
    else
        origin += Clock::now() - pausedAt;
    changed.notify_all();
}

void Controls::setVolume(long volume)
{
    const std::lock_guard<std::mutex> lock(mutex);
    currentVolume = static_cast<int>(std::clamp<long>(volume, 0, maxVolume));
    changed.notify_all();
}

bool Controls::isPaused() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return paused;
}

int Controls::volume() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return currentVolume;
}

Controls::Time Controls::now() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return nowLocked();
}

Controls::Time Controls::elapsed() const
{
    return std::chrono::duration_cast<Time>(Clock::now() - started);
}

void Controls::waitWhilePaused() const
{
    std::unique_lock<std::mutex> lock(mutex);
    changed.wait(lock, [this] { return !paused; });
}

void Controls::waitUntil(Time time) const
{
    std::unique_lock<std::mutex> lock(mutex);
    while (paused || nowLocked() < time) {
        if (paused)
            changed.wait(lock);
        else
            changed.wait_until(lock, origin + time);
    }
}

void Controls::waitForSound() const
{
    std::unique_lock<std::mutex> lock(mutex);
    changed.wait(lock, [this] { return !paused && currentVolume > 0; });
}

Controls::Time Controls::nowLocked() const
{
    return std::chrono::duration_cast<Time>((paused ? pausedAt : Clock::now()) - origin);
}

} // namespace Companion
} // namespace ZorvaneClient
