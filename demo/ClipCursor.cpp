// SPDX-License-Identifier: MIT
#include "demo/ClipCursor.h"

#include <utility>

#include "service/LocalTime.h"
#include "service/MediaLibrary.h"

namespace ZorvaneDemo {

namespace {

constexpr int mostKeyFramesPerSecond = 25;

/// Number, since the epoch, of the packet of `clip` that begins at or after `momentMs`.
std::int64_t packetFrom(const Clip &clip, std::int64_t momentMs)
{
    return (momentMs * clip.packetCount() + minuteMs - 1) / minuteMs;
}

std::int64_t packetTimeMs(const Clip &clip, std::int64_t number)
{
    return number * minuteMs / clip.packetCount();
}

/// In seconds; so large that no more key frames come than a player can show.
std::int64_t keyFrameStep(int speed)
{
    return (speed + mostKeyFramesPerSecond - 1) / mostKeyFramesPerSecond;
}

} // namespace

ClipCursor::ClipCursor(std::shared_ptr<const Clip> pictures, std::shared_ptr<const Clip> tones,
                       int number, int playSpeed)
    : video(std::move(pictures))
    , sound(std::move(tones))
    , format(std::make_shared<const MediaFormat>(video->format()))
    , camera(number)
    , speed(playSpeed)
{
}

std::int64_t ClipCursor::seek(std::int64_t momentMs)
{
    const std::int64_t second = momentMs / secondMs * secondMs;
    nextPicture = packetFrom(*video, second);
    nextSound = packetFrom(*sound, second);
    return second;
}

std::int64_t ClipCursor::pictureMs() const
{
    return packetTimeMs(*video, nextPicture);
}

void ClipCursor::read(MediaPacket *packet)
{
    packet->format = format;
    packet->data.clear();
    if (!readSound(packet))
        readPicture(packet);
}

bool ClipCursor::readSound(MediaPacket *packet)
{
    packet->momentMs = packetTimeMs(*sound, nextSound);
    if (speed != 1 || packet->momentMs > pictureMs())
        return false;
    const int at = static_cast<int>(nextSound % sound->packetCount());
    packet->isPicture = false;
    packet->data.assign(sound->packetData(at), sound->packetData(at) + sound->packetSize(at));
    ++nextSound;
    return true;
}

void ClipCursor::readPicture(MediaPacket *packet)
{
    const int at = static_cast<int>(nextPicture % video->packetCount());
    packet->isPicture = true;
    packet->keyFrame = video->isKeyFrame(at);
    packet->momentMs = pictureMs();
    video->appendPicture(at, camera, &packet->data);
    nextPicture += speed >= MediaLibrary::byKeyFramesFrom
                       ? keyFrameStep(speed) * video->packetCount() / secondsPerMinute
                       : 1;
}

} // namespace ZorvaneDemo
