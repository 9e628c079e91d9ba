// SPDX-License-Identifier: MIT
#include "demo/StreamingService.h"

#include <nlohmann/json.hpp>

#include "demo/Archive.h"
#include "demo/LocalTime.h"
#include "demo/Preview.h"
#include "demo/Quality.h"

namespace ZorvaneDemo {

namespace {

struct Span {
    std::int64_t startMs;
    std::int64_t endMs;
    bool valid;
};

Span requestedSpan(const HttpRequest &request)
{
    auto parameters = request.parameters();
    const std::int64_t start = numberOr(parameters["startTime"], -1);
    const std::int64_t end = numberOr(parameters["endTime"], -1);
    if (start < 0 || end < start || end > largestTime / secondMs)
        return {0, 0, false};
    return {start * secondMs, end * secondMs + secondMs - 1, true};
}

} // namespace

HttpReply StreamingService::handle(const HttpRequest &request) const
{
    if (request.method == "GET" && request.path == "//preview/live")
        return preview(request);
    if (request.method == "GET" && request.path == "//archive/list")
        return archiveList(request);
    if (request.method == "GET" && request.path == "//archive/days")
        return archiveDays(request);
    return HttpReply::refusal(404);
}

HttpReply StreamingService::preview(const HttpRequest &request) const
{
    const Access::Result result = access.check(request, Access::Need::Live);
    if (result.status != 200)
        return HttpReply::refusal(result.status);
    const auto clip = clips.video(result.camera.scene, requestedQuality(request));
    HttpReply reply;
    reply.contentType = "image/jpeg";
    if (clip)
        reply.body = previewJpeg(*clip, result.camera.number, nowMs());
    if (reply.body.empty())
        return HttpReply::refusal(500);
    return reply;
}

HttpReply StreamingService::archiveList(const HttpRequest &request) const
{
    const Access::Result result = access.check(request, Access::Need::Archive);
    const Span span = requestedSpan(request);
    if (result.status != 200 || !span.valid)
        return HttpReply::refusal(result.status != 200 ? result.status : 400);
    auto list = nlohmann::json::array();
    const Archive archive(result.camera, nowMs());
    for (const Record &record : archive.records(span.startMs, span.endMs))
        list.push_back(
            {{"startTime", record.startMs}, {"duration", record.endMs - record.startMs}});
    return HttpReply::json(200, list);
}

HttpReply StreamingService::archiveDays(const HttpRequest &request) const
{
    const Access::Result result = access.check(request, Access::Need::Archive);
    const Span span = requestedSpan(request);
    if (result.status != 200 || !span.valid)
        return HttpReply::refusal(result.status != 200 ? result.status : 400);
    auto list = nlohmann::json::array();
    const Archive archive(result.camera, nowMs());
    for (const auto &[day, count] : archive.days(span.startMs, span.endMs))
        list.push_back({{"date", day}, {"recordsCount", count}});
    return HttpReply::json(200, list);
}

} // namespace ZorvaneDemo
