// SPDX-License-Identifier: MIT
#include "service/FlvService.h"

#include "service/ArchiveSender.h"
#include "service/Counted.h"
#include "service/HttpStatus.h"
#include "service/Quality.h"

namespace ZorvaneService {

namespace {

HttpReply flvReply(HttpReply::Stream stream)
{
    HttpReply reply;
    reply.contentType = "video/x-flv";
    reply.stream = std::move(stream);
    return reply;
}

} // namespace

HttpReply FlvService::handle(const HttpRequest &request)
{
    if (request.method == "GET" && request.path == "/flv/live")
        return live(request);
    if (request.method == "GET" && request.path == "/flv/archive")
        return archive(request);
    return HttpReply::refusal(HttpStatus::NotFound);
}

HttpReply FlvService::live(const HttpRequest &request)
{
    const Access::Result result = access.check(request, Access::Need::Live);
    if (!result.isGranted())
        return HttpReply::refusal(result.status);
    return flvReply([this, request, camera = result.found.id()](BodySink &sink) {
        const Counted counted(streams);
        return sendLive(request, camera, sink);
    });
}

bool FlvService::sendLive(const HttpRequest &request, const CameraId &camera, BodySink &sink) const
{
    const auto source = media.live(camera, requestedQuality(request));
    const auto zeroMs = source ? source->begin() : std::nullopt;
    if (!zeroMs)
        return false;
    FlvStream stream(sink, 1, *zeroMs);
    Watch watch(roster, access, request, Access::Need::Live);
    MediaPacket packet;
    for (;;) {
        const auto outcome = source->read(&packet);
        if (outcome == MediaSource::Outcome::End || (watch.isDue() && !watch.isAllowed()))
            return true;
        const bool isHere = outcome == MediaSource::Outcome::Packet;
        if (!(isHere ? stream.send(packet) : sink.isOpen()))
            return false;
    }
}

HttpReply FlvService::archive(const HttpRequest &request)
{
    const Access::Result result = access.check(request, Access::Need::Archive);
    if (!result.isGranted())
        return HttpReply::refusal(result.status);
    const auto span = ArchiveSpan::from(request);
    if (!span)
        return HttpReply::refusal(HttpStatus::BadRequest);
    // The cloud gives no archive away.
    if (span->isExport() && !request.isForLanServer())
        return HttpReply::refusal(HttpStatus::Forbidden);
    const CameraId camera = result.found.id();
    const auto record = span->isExport() ? catalogue.recordFrom(camera, span->startMs)
                                         : catalogue.recordAt(camera, span->startMs);
    if (!record || record->startMs >= span->endMs)
        return HttpReply::refusal(HttpStatus::NotFound);
    return flvReply([this, request, camera, span = *span, record = *record](BodySink &sink) {
        const Counted counted(streams);
        const auto source = media.archive(camera, requestedQuality(request), span.speed);
        const auto first = source ? source->seek(record, span.startMs) : std::nullopt;
        if (!first)
            return false;
        Watch watch(roster, access, request, Access::Need::Archive);
        return ArchiveSender(catalogue, camera, span, record, *source, *first, watch, sink).run();
    });
}

} // namespace ZorvaneService
