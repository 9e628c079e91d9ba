// SPDX-License-Identifier: MIT
#include "demo/FlvService.h"

#include <algorithm>
#include <chrono>
#include <memory>
#include <thread>
#include <utility>

#include "demo/Archive.h"
#include "demo/Flv.h"

namespace ZorvaneDemo {

namespace {

constexpr const char *contentType = "video/x-flv";
constexpr std::int64_t secondMs = 1000;
/// A receiver that fell back further is sent on to the present.
constexpr std::int64_t largestLagMs = 3000;
constexpr int keyFramesOnlyFrom = 4;
constexpr int largestSpeed = 32;

std::int64_t nowMs()
{
    using namespace std::chrono;
    return duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
}

void sleepUntil(std::int64_t momentMs)
{
    const std::int64_t left = momentMs - nowMs();
    if (left > 0)
        std::this_thread::sleep_for(std::chrono::milliseconds(left));
}

/// Number, since the epoch, of the packet of `clip` that begins at or after `momentMs`.
std::int64_t packetFrom(const Clip &clip, std::int64_t momentMs)
{
    return (momentMs * clip.packetCount() + minuteMs - 1) / minuteMs;
}

std::int64_t packetTimeMs(const Clip &clip, std::int64_t number)
{
    return number * minuteMs / clip.packetCount();
}

} // namespace

/// What to play of an archive.
struct FlvService::Span {
    std::int64_t startMs = 0;
    std::int64_t endMs = 0;
    int speed = 1;
    bool paced = true;
};

/// Turns moments into FLV for one receiver.
class FlvService::Feed
{
public:
    Feed(const ClipStore &clips, const Camera &camera, int quality, BodySink &receiver)
        : video(clips.video(camera.scene, quality))
        , sound(clips.sound())
        , number(camera.number)
        , sink(receiver)
    {
    }

    bool isReady() const { return video && sound; }

    bool begin(std::int64_t momentMs)
    {
        Bytes out;
        appendFlvHeader(*video, &out);
        startMs = momentMs / secondMs * secondMs;
        seek(startMs);
        return sink.write(out.data(), out.size());
    }

    /// Goes on with the key frame of the second that holds `momentMs`.
    void seek(std::int64_t momentMs)
    {
        const std::int64_t second = momentMs / secondMs * secondMs;
        nextPicture = packetFrom(*video, second);
        nextSound = packetFrom(*sound, second);
    }

    std::int64_t nextMs() const { return packetTimeMs(*video, nextPicture); }

    /// Sends the next picture and the sound up to it; time stamps run `speed` times as fast.
    bool send(int speed)
    {
        Bytes out;
        const std::int64_t momentMs = nextMs();
        while (speed == 1 && packetTimeMs(*sound, nextSound) <= momentMs) {
            const int at = static_cast<int>(nextSound % sound->packetCount());
            appendFlvSound(stamp(packetTimeMs(*sound, nextSound), 1), sound->packetData(at),
                           sound->packetSize(at), &out);
            ++nextSound;
        }
        const int at = static_cast<int>(nextPicture % video->packetCount());
        picture.clear();
        video->appendPicture(at, number, &picture);
        appendFlvVideo(stamp(momentMs, speed), video->isKeyFrame(at), picture, &out);
        if (speed >= keyFramesOnlyFrom)
            nextPicture += video->packetCount() / (minuteMs / secondMs);
        else
            ++nextPicture;
        return sink.write(out.data(), out.size());
    }

private:
    std::uint32_t stamp(std::int64_t momentMs, int speed) const
    {
        return static_cast<std::uint32_t>((momentMs - startMs) / speed);
    }

    const std::shared_ptr<const Clip> video;
    const std::shared_ptr<const Clip> sound;
    const int number;
    BodySink &sink;
    Bytes picture;
    std::int64_t startMs = 0;
    std::int64_t nextPicture = 0;
    std::int64_t nextSound = 0;
};

namespace {

/// Counts a stream for as long as it is sent.
class Counted
{
public:
    explicit Counted(std::atomic<int> &number) : count(number) { ++count; }
    ~Counted() { --count; }
    Counted(const Counted &) = delete;
    Counted &operator=(const Counted &) = delete;

private:
    std::atomic<int> &count;
};

HttpReply refused(int status)
{
    HttpReply reply;
    reply.status = status;
    return reply;
}

} // namespace

HttpReply FlvService::live(const HttpRequest &request)
{
    const Access::Result result = access.check(request, Access::Need::Live);
    if (result.status != 200)
        return refused(result.status);
    HttpReply reply;
    reply.contentType = contentType;
    reply.stream = [this, request, camera = result.camera](BodySink &sink) {
        const Counted counted(streams);
        return sendLive(request, camera, sink);
    };
    return reply;
}

bool FlvService::sendLive(const HttpRequest &request, const Camera &camera, BodySink &sink) const
{
    Feed feed(clips, camera, requestedQuality(request), sink);
    if (!feed.isReady() || !feed.begin(nowMs()))
        return false;
    std::uint64_t generation = world.generation();
    std::int64_t checkedMs = nowMs();
    for (;;) {
        sleepUntil(feed.nextMs());
        const std::int64_t now = nowMs();
        if (generation != world.generation() || now - checkedMs >= secondMs) {
            generation = world.generation();
            checkedMs = now;
            if (access.check(request, Access::Need::Live).status != 200)
                return true;
        }
        if (now - feed.nextMs() > largestLagMs)
            feed.seek(now);
        if (!feed.send(1))
            return false;
    }
}

HttpReply FlvService::archive(const HttpRequest &request)
{
    const Access::Result result = access.check(request, Access::Need::Archive);
    if (result.status != 200)
        return refused(result.status);
    auto parameters = request.parameters();
    Span span;
    span.startMs = numberOr(parameters["startTime"], -1);
    span.endMs = numberOr(parameters["endTime"], -1);
    span.speed = static_cast<int>(
        std::clamp<std::int64_t>(numberOr(parameters["speed"], 1), 1, largestSpeed));
    if (span.endMs >= 0) {
        span.paced = false;
        span.speed = 1;
    } else {
        span.startMs = std::min(span.startMs, largestTime / secondMs) * secondMs;
    }
    if (span.startMs < 0 || !Archive(result.camera.number, nowMs()).recordAt(span.startMs))
        return refused(404);
    HttpReply reply;
    reply.contentType = contentType;
    reply.stream = [this, request, camera = result.camera, span](BodySink &sink) {
        const Counted counted(streams);
        return sendArchive(request, camera, span, sink);
    };
    return reply;
}

bool FlvService::sendArchive(const HttpRequest &request, const Camera &camera, const Span &span,
                             BodySink &sink) const
{
    Feed feed(clips, camera, requestedQuality(request), sink);
    if (!feed.isReady() || !feed.begin(span.startMs))
        return false;
    const std::int64_t beganMs = nowMs();
    const std::int64_t firstMs = feed.nextMs();
    std::int64_t endMs = 0;
    for (;;) {
        const std::int64_t moment = feed.nextMs();
        if (moment >= endMs) {
            // A record that is still being written grows while it is watched.
            const auto record =
                Archive(camera.number, nowMs()).recordAt(std::max(moment, span.startMs));
            const bool over = !record || (!span.paced && moment >= span.endMs);
            if (over || access.check(request, Access::Need::Archive).status != 200)
                return true;
            endMs = std::min(record->endMs, moment + secondMs);
            if (!span.paced)
                endMs = std::min(endMs, span.endMs);
        }
        if (span.paced)
            sleepUntil(beganMs + (moment - firstMs) / span.speed);
        if (!feed.send(span.speed))
            return false;
    }
}

} // namespace ZorvaneDemo
