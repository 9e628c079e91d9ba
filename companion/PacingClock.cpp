// SPDX-License-Identifier: MIT
#include "companion/PacingClock.h"

namespace ZorvaneClient {
namespace Companion {

void PacingClock::anchor(Time position, Time time)
{
    const std::lock_guard<std::mutex> lock(mutex);
    delay = time - position;
}

bool PacingClock::isRunning() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return delay.has_value();
}

PacingClock::Time PacingClock::due(Time position) const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return position + delay.value_or(Time(0));
}

PacingClock::Time PacingClock::position(Time time) const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return time - delay.value_or(Time(0));
}

} // namespace Companion
} // namespace ZorvaneClient
