// SPDX-License-Identifier: MIT
#include "server/RunClock.h"

#include <algorithm>
#include <cmath>

namespace ZorvaneServer {

using namespace std::chrono_literals;

namespace {

// Clocks are read one after the other, and a busy machine takes its time between.
constexpr RunClock::Duration smallestStep = 500ms;
// A line that stood still brings what it held back; one that stays behind won't.
constexpr RunClock::Duration behindFor = 5s;
constexpr RunClock::Duration leastApart = 1ms;

} // namespace

RunClock::Duration RunClock::place(const Arrival &picture)
{
    if (count == 0) {
        filter.take(picture.stamp, picture.steady);
        begin(picture);
    } else {
        follow(picture);
        if (picture.isKey && endsAtKey)
            begin(picture);
        else
            last = std::max(last + leastApart, first.wall + position);
    }
    latest = picture;
    return last;
}

void RunClock::begin(const Arrival &picture)
{
    ++count;
    endsAtKey = false;
    first = picture;
    position = 0us;
    last = picture.wall;
    behindSince = Duration::max();
}

bool RunClock::hasStepped(const Arrival &picture) const
{
    const Duration step = (picture.wall - picture.steady) - (first.wall - first.steady);
    return step > smallestStep || step < -smallestStep;
}

void RunClock::follow(const Arrival &picture)
{
    StampFilter::Step step = filter.take(picture.stamp, picture.steady);
    const Duration elapsed = picture.steady - first.steady;
    // What ran ahead by stamps that are known to be wrong by now is waited for.
    if (step.isGuess && position > elapsed)
        step.length /= 2;
    position += step.length;
    endsAtKey |= step.isGap || hasStepped(picture);

    // No picture comes from the future.
    if (position - elapsed > farthest) {
        position = std::max(position - step.length, elapsed + farthest);
        endsAtKey = true;
    }
    if (elapsed - position <= farthest)
        behindSince = Duration::max();
    else if (behindSince == Duration::max())
        behindSince = picture.steady;
    else if (picture.steady - behindSince > behindFor) {
        position = elapsed;
        endsAtKey = true;
    }
    const double most = mostDrawn * double(step.length.count());
    const double drawn = std::clamp(double((elapsed - position).count()), -most, most);
    position += Duration(std::llround(drawn));
}

} // namespace ZorvaneServer
