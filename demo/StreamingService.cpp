// SPDX-License-Identifier: MIT
#include "demo/StreamingService.h"

#include <nlohmann/json.hpp>

#include <optional>

#include "demo/Archive.h"
#include "demo/Preview.h"
#include "service/LocalTime.h"
#include "service/Quality.h"

namespace ZorvaneDemo {

namespace {

struct Span {
    std::int64_t startMs;
    std::int64_t endMs;
};

std::optional<Span> requestedSpan(const HttpRequest &request)
{
    auto parameters = request.parameters();
    const std::int64_t start = numberOr(parameters["startTime"], -1);
    const std::int64_t end = numberOr(parameters["endTime"], -1);
    if (start < 0 || end < start || end > largestTime / secondMs)
        return std::nullopt;
    return Span{start * secondMs, end * secondMs + secondMs - 1};
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

template <typename Describe>
HttpReply StreamingService::archiveReply(const HttpRequest &request, Describe describe) const
{
    const Access::Result result = access.check(request, Access::Need::Archive);
    if (result.status != 200)
        return HttpReply::refusal(result.status);
    const auto span = requestedSpan(request);
    if (!span)
        return HttpReply::refusal(400);
    return HttpReply::json(200, describe(Archive(result.camera, nowMs()), *span));
}

HttpReply StreamingService::archiveList(const HttpRequest &request) const
{
    return archiveReply(request, [](const Archive &archive, const Span &span) {
        auto list = nlohmann::json::array();
        for (const Record &record : archive.records(span.startMs, span.endMs))
            list.push_back(
                {{"startTime", record.startMs}, {"duration", record.endMs - record.startMs}});
        return list;
    });
}

HttpReply StreamingService::archiveDays(const HttpRequest &request) const
{
    return archiveReply(request, [](const Archive &archive, const Span &span) {
        auto list = nlohmann::json::array();
        for (const auto &[day, count] : archive.days(span.startMs, span.endMs))
            list.push_back({{"date", day}, {"recordsCount", count}});
        return list;
    });
}

} // namespace ZorvaneDemo
