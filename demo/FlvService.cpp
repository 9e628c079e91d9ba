// SPDX-License-Identifier: MIT
#include "demo/FlvService.h"

#include <algorithm>

#include "demo/Archive.h"
#include "demo/FlvFeed.h"
#include "service/LocalTime.h"
#include "service/Quality.h"

namespace ZorvaneDemo {

namespace {

constexpr const char *contentType = "video/x-flv";
/// A receiver of a live stream that fell back further is sent on to the present; an archive
/// stream goes on from where it was.
constexpr std::int64_t largestLagMs = 3000;
/// An archive stream comes so much before its time: recorders read ahead.
constexpr std::int64_t leadMs = 500;

/// The first key frame of what `record` holds from `momentMs` on. A picture needs the key frame
/// of its second, unless that was before the record began.
std::int64_t keyFrameFrom(const Record &record, std::int64_t momentMs)
{
    const std::int64_t second = std::max(momentMs, record.startMs) / secondMs * secondMs;
    return second < record.startMs ? second + secondMs : second;
}

/// Lets pass so many bytes a millisecond; 0: as fast as they are taken.
class RateLimit : public BodySink
{
public:
    RateLimit(BodySink &receiver, std::int64_t bytesPerMs) : sink(receiver), rate(bytesPerMs) {}

    bool write(const void *data, std::size_t size) override
    {
        if (!sink.write(data, size))
            return false;
        passed += static_cast<std::int64_t>(size);
        if (rate > 0)
            sleepUntil(beganMs + passed / rate);
        return true;
    }

    bool isOpen() override { return sink.isOpen(); }

private:
    BodySink &sink;
    const std::int64_t rate;
    const std::int64_t beganMs = nowMs();
    std::int64_t passed = 0;
};

/// Says when what is played is to be sent.
class Pace
{
public:
    Pace(std::int64_t startMs, int playSpeed) : firstMs(startMs), speed(playSpeed) {}

    /// Blocks until `momentMs` is due; what isn't recorded yet is waited for.
    void await(std::int64_t momentMs)
    {
        const std::int64_t dueMs = beganMs + (momentMs - firstMs) / speed - leadMs;
        const std::int64_t lagMs = nowMs() - dueMs;
        if (lagMs > largestLagMs)
            beganMs += lagMs;
        sleepUntil(std::max(dueMs, momentMs + 1));
    }

private:
    const std::int64_t firstMs;
    const int speed;
    std::int64_t beganMs = nowMs();
};

/// Tells when it is time to look whether a camera may still be seen.
class Watch
{
public:
    explicit Watch(const World &cameras) : world(cameras) {}

    bool isDue()
    {
        const std::int64_t now = nowMs();
        if (generation == world.generation() && now - checkedMs < secondMs)
            return false;
        generation = world.generation();
        checkedMs = now;
        return true;
    }

private:
    const World &world;
    std::uint64_t generation = world.generation();
    std::int64_t checkedMs = nowMs();
};

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

} // namespace

HttpReply FlvService::handle(const HttpRequest &request)
{
    if (request.method == "GET" && request.path == "/flv/live")
        return live(request);
    if (request.method == "GET" && request.path == "/flv/archive")
        return archive(request);
    return HttpReply::refusal(404);
}

HttpReply FlvService::live(const HttpRequest &request)
{
    const Access::Result result = access.check(request, Access::Need::Live);
    if (result.status != 200)
        return HttpReply::refusal(result.status);
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
    FlvFeed feed(clips, camera, requestedQuality(request), sink);
    if (!feed.isReady() || !feed.begin(nowMs()))
        return false;
    Watch watch(world);
    for (;;) {
        sleepUntil(feed.nextMs());
        if (watch.isDue() && access.check(request, Access::Need::Live).status != 200)
            return true;
        const std::int64_t now = nowMs();
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
        return HttpReply::refusal(result.status);
    const auto span = ArchiveSpan::from(request);
    if (!span)
        return HttpReply::refusal(400);
    // The cloud gives no archive away.
    if (span->isExport() && !request.isForLanServer())
        return HttpReply::refusal(403);
    const Archive archive(result.camera, nowMs());
    const auto record =
        span->isExport() ? archive.recordFrom(span->startMs) : archive.recordAt(span->startMs);
    if (!record || record->startMs >= span->endMs)
        return HttpReply::refusal(404);
    HttpReply reply;
    reply.contentType = contentType;
    reply.stream = [this, request, camera = result.camera, span = *span,
                    record = *record](BodySink &sink) {
        const Counted counted(streams);
        return sendArchive(request, camera, span, record, sink);
    };
    return reply;
}

bool FlvService::sendArchive(const HttpRequest &request, const Camera &camera,
                             const ArchiveSpan &span, Record record, BodySink &sink) const
{
    RateLimit limited(sink, span.bytesPerMs);
    FlvFeed feed(clips, camera, requestedQuality(request), limited);
    if (!feed.isReady() || !feed.begin(keyFrameFrom(record, span.startMs)))
        return false;
    Pace pace(feed.nextMs(), span.speed);
    Watch watch(world);
    for (;;) {
        const std::int64_t moment = feed.nextMs();
        if (moment >= span.endMs)
            return true;
        if (!span.isExport())
            pace.await(moment);
        if (moment >= record.endMs || watch.isDue()) {
            if (!findRecord(request, span, &record, &feed))
                return true;
        } else if (!feed.send(span.speed)) {
            return false;
        }
    }
}

bool FlvService::findRecord(const HttpRequest &request, const ArchiveSpan &span, Record *record,
                            FlvFeed *feed) const
{
    const Access::Result result = access.check(request, Access::Need::Archive);
    if (result.status != 200)
        return false;
    const Archive archive(result.camera, nowMs());
    const std::int64_t moment = feed->nextMs();
    const auto found = span.isExport() ? archive.recordFrom(moment) : archive.recordAt(moment);
    if (!found)
        return false;
    // Else it is the one at hand, which may have grown.
    if (found->startMs != record->startMs) {
        if (!span.isExport() || found->startMs >= span.endMs)
            return false;
        feed->join(keyFrameFrom(*found, moment));
    }
    *record = *found;
    return true;
}

} // namespace ZorvaneDemo
