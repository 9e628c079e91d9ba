// SPDX-License-Identifier: MIT
#include "server/SoundClock.h"

#include <algorithm>

namespace ZorvaneServer {

using namespace std::chrono_literals;

namespace {

// Sound and pictures of one moment don't come further apart.
constexpr SoundClock::Duration farthestStamps = 5s;
constexpr SoundClock::Duration farthestApart = 200ms;
constexpr SoundClock::Duration leastApart = 1ms;

} // namespace

SoundClock::Duration SoundClock::place(const Arrival &sound, const RunClock &pictures)
{
    const Duration apart = sound.stamp - pictures.picture().stamp;
    const bool sharesStamps = apart <= farthestStamps && apart >= -farthestStamps;
    const Duration target =
        pictures.moment() + (sharesStamps ? apart : sound.steady - pictures.picture().steady);
    Duration moment = target;
    if (latest && run == pictures.runs()) {
        const Duration step = sound.stamp - latest->stamp;
        const Duration off = target - (last + step);
        if (step >= 0us && off <= farthestApart && off >= -farthestApart) {
            const auto most = Duration(long(double(step.count()) * RunClock::mostDrawn));
            moment = last + step + std::clamp(off, -most, most);
        }
        moment = std::max(moment, last + leastApart);
    }
    latest = sound;
    run = pictures.runs();
    last = moment;
    return last;
}

} // namespace ZorvaneServer
