// SPDX-License-Identifier: MIT
#include "demo/ClipLive.h"

#include <algorithm>
#include <utility>

#include "service/LocalTime.h"

namespace ZorvaneDemo {

namespace {

/// A receiver that fell back further is sent on to the present.
constexpr std::int64_t largestLagMs = 3000;

} // namespace

ClipLive::ClipLive(ClipCursor clips) : cursor(std::move(clips))
{
}

std::optional<std::int64_t> ClipLive::begin()
{
    return cursor.seek(nowMs());
}

MediaSource::Outcome ClipLive::read(MediaPacket *packet)
{
    const std::int64_t due = cursor.pictureMs();
    sleepUntil(std::min<std::int64_t>(due, nowMs() + longestWait.count()));
    const std::int64_t now = nowMs();
    if (now < due)
        return Outcome::NotYet;
    if (now - due > largestLagMs)
        cursor.seek(now);
    cursor.read(packet);
    return Outcome::Packet;
}

} // namespace ZorvaneDemo
