// SPDX-License-Identifier: MIT
#include "demo/ClipArchive.h"

#include <algorithm>
#include <utility>

#include "service/LocalTime.h"

namespace ZorvaneDemo {

ClipArchive::ClipArchive(ClipCursor clips) : cursor(std::move(clips))
{
}

std::optional<std::int64_t> ClipArchive::seek(const Record &record, std::int64_t momentMs)
{
    // A picture needs the key frame of its second, unless that was before the record began.
    const std::int64_t first = cursor.seek(std::max(momentMs, record.startMs));
    return first < record.startMs ? cursor.seek(first + secondMs) : first;
}

MediaSource::Outcome ClipArchive::read(MediaPacket *packet)
{
    // What there will be is invented, too, but nobody has recorded it yet.
    const std::int64_t due = cursor.pictureMs() + 1;
    sleepUntil(std::min<std::int64_t>(due, nowMs() + longestWait.count()));
    if (nowMs() < due)
        return Outcome::NotYet;
    cursor.read(packet);
    return Outcome::Packet;
}

} // namespace ZorvaneDemo
