// SPDX-License-Identifier: MIT
#include "companion/Pacing.h"

#include <algorithm>

namespace ZorvaneClient {
namespace Companion {

namespace {

using std::chrono::milliseconds;

/// A live picture this far behind the newest packet makes the clock jump.
constexpr auto maxLiveLag = milliseconds(400);
constexpr auto liveLagAfterJump = milliseconds(120);
/// With more than this waiting, decoding goes on at a later key frame.
constexpr auto keyJumpLag = milliseconds(1000);
constexpr auto anyReach = milliseconds(1'000'000);

/// A picture this late gives way to the next one, if that is there already.
constexpr auto skipLateness = milliseconds(40);
constexpr auto hurryLateness = milliseconds(200);
constexpr auto maxLateness = milliseconds(2000);
/// But something is to be seen at least this often.
constexpr auto maxUnshown = milliseconds(250);
/// Pictures closer together than this can't be seen singly.
constexpr auto minPictureStep = milliseconds(10);
/// A picture farther ahead isn't waited for: its time stamp is a jump.
constexpr auto maxWait = milliseconds(5000);

/// Without a new picture the time runs on for as long as the last two were apart, within these.
constexpr auto minRunOn = milliseconds(250);
constexpr auto maxRunOn = milliseconds(1500);

} // namespace

/// Sets the clock anew where the stream itself is late or jumps; a decoder that is late gets
/// fewer pictures to show instead.
Pacing::Answer Pacing::arrived(Time position, Time now, const Backlog &backlog)
{
    const Time late = now - dueClock.due(position);
    const bool waitedForStream = backlog.ranDry || backlog.isEmpty;
    const bool streamIsLate = late > Time(0) && (waitedForStream || late > maxLateness);
    if (!dueClock.isRunning() || streamIsLate || -late > maxWait)
        dueClock.anchor(position, now);

    Answer answer;
    if (live)
        followLive(position, now, backlog, &answer);
    else if (late > keyJumpLag)
        answer.jump = std::chrono::duration_cast<milliseconds>(late);
    answer.isVeryLate = now - dueClock.due(position) > hurryLateness;
    if (isSkipped(position, now, backlog))
        answer.action = Action::Skip;
    else
        showWhenDue(position, now, &answer);
    return answer;
}

Pacing::Answer Pacing::waited(Time position, Time now, const Backlog &backlog)
{
    Answer answer;
    if (live)
        followLive(position, now, backlog, &answer);
    showWhenDue(position, now, &answer);
    return answer;
}

void Pacing::shown(Time position, Time now)
{
    shownAt = now;
    runOn = std::clamp<Time>(position - shownPosition, minRunOn, maxRunOn);
    shownPosition = position;
}

Pacing::Time Pacing::idlePosition(Time now) const
{
    return std::min(dueClock.position(now), shownPosition + runOn);
}

void Pacing::followLive(Time position, Time now, const Backlog &backlog, Answer *answer)
{
    const Time newest = position + backlog.span;
    if (newest - dueClock.position(now) > maxLiveLag)
        dueClock.anchor(newest - liveLagAfterJump, now);
    if (backlog.span > keyJumpLag)
        answer->jump = anyReach;
}

bool Pacing::isSkipped(Time position, Time now, const Backlog &backlog) const
{
    if (!hasShown() || backlog.isEmpty)
        return false;
    const bool late = now - dueClock.due(position) > skipLateness;
    const bool tooClose = position - shownPosition < minPictureStep;
    return (late || tooClose) && now - lastShown() < maxUnshown;
}

void Pacing::showWhenDue(Time position, Time now, Answer *answer) const
{
    answer->until = dueClock.due(position);
    answer->action = now < answer->until ? Action::Wait : Action::Show;
}

} // namespace Companion
} // namespace ZorvaneClient
