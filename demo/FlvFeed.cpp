// SPDX-License-Identifier: MIT
#include "demo/FlvFeed.h"

#include "demo/Flv.h"
#include "service/LocalTime.h"

namespace ZorvaneDemo {

namespace {

constexpr int keyFramesOnlyFrom = 4;
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

FlvFeed::FlvFeed(const ClipStore &clips, const Camera &camera, int quality, BodySink &receiver)
    : video(clips.video(camera.scene, quality))
    , sound(clips.sound())
    , number(camera.number)
    , sink(receiver)
{
}

bool FlvFeed::begin(std::int64_t momentMs)
{
    Bytes out;
    appendFlvHeader(*video, &out);
    zeroMs = momentMs / secondMs * secondMs;
    seek(zeroMs);
    return sink.write(out.data(), out.size());
}

void FlvFeed::seek(std::int64_t momentMs)
{
    const std::int64_t second = momentMs / secondMs * secondMs;
    nextPicture = packetFrom(*video, second);
    nextSound = packetFrom(*sound, second);
}

void FlvFeed::join(std::int64_t momentMs)
{
    zeroMs -= nextMs();
    seek(momentMs);
    zeroMs += nextMs();
}

std::int64_t FlvFeed::nextMs() const
{
    return packetTimeMs(*video, nextPicture);
}

bool FlvFeed::send(int speed)
{
    Bytes out;
    const std::int64_t momentMs = nextMs();
    if (speed == 1)
        appendSoundUpTo(momentMs, &out);
    const int at = static_cast<int>(nextPicture % video->packetCount());
    picture.clear();
    video->appendPicture(at, number, &picture);
    appendFlvVideo(stamp(momentMs, speed), video->isKeyFrame(at), picture, &out);
    if (speed >= keyFramesOnlyFrom)
        nextPicture += keyFrameStep(speed) * video->packetCount() / secondsPerMinute;
    else
        ++nextPicture;
    return sink.write(out.data(), out.size());
}

void FlvFeed::appendSoundUpTo(std::int64_t momentMs, Bytes *out)
{
    for (; packetTimeMs(*sound, nextSound) <= momentMs; ++nextSound) {
        const int at = static_cast<int>(nextSound % sound->packetCount());
        appendFlvSound(stamp(packetTimeMs(*sound, nextSound), 1), sound->packetData(at),
                       sound->packetSize(at), out);
    }
}

std::uint32_t FlvFeed::stamp(std::int64_t momentMs, int speed) const
{
    return static_cast<std::uint32_t>((momentMs - zeroMs) / speed);
}

} // namespace ZorvaneDemo
