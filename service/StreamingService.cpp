// SPDX-License-Identifier: MIT
#include "service/StreamingService.h"

#include <nlohmann/json.hpp>

#include <optional>

#include "service/HttpStatus.h"
#include "service/LocalTime.h"
#include "service/Quality.h"

namespace ZorvaneService {

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
    return HttpReply::refusal(HttpStatus::NotFound);
}

HttpReply StreamingService::preview(const HttpRequest &request) const
{
    const Access::Result result = access.check(request, Access::Need::Live);
    if (!result.isGranted())
        return HttpReply::refusal(result.status);
    HttpReply reply;
    reply.contentType = "image/jpeg";
    reply.body = media.preview(result.found.id(), requestedQuality(request));
    if (reply.body.empty())
        return HttpReply::refusal(HttpStatus::InternalError);
    return reply;
}

template <typename Describe>
HttpReply StreamingService::archiveReply(const HttpRequest &request, Describe describe) const
{
    const Access::Result result = access.check(request, Access::Need::Archive);
    if (!result.isGranted())
        return HttpReply::refusal(result.status);
    const auto span = requestedSpan(request);
    if (!span)
        return HttpReply::refusal(HttpStatus::BadRequest);
    return HttpReply::json(HttpStatus::Ok, describe(result.found.id(), *span));
}

HttpReply StreamingService::archiveList(const HttpRequest &request) const
{
    return archiveReply(request, [this](const CameraId &camera, const Span &span) {
        auto list = nlohmann::json::array();
        for (const Record &record : catalogue.records(camera, span.startMs, span.endMs))
            list.push_back(
                {{"startTime", record.startMs}, {"duration", record.endMs - record.startMs}});
        return list;
    });
}

HttpReply StreamingService::archiveDays(const HttpRequest &request) const
{
    return archiveReply(request, [this](const CameraId &camera, const Span &span) {
        auto list = nlohmann::json::array();
        for (const auto &[day, count] : catalogue.days(camera, span.startMs, span.endMs))
            list.push_back({{"date", day}, {"recordsCount", count}});
        return list;
    });
}

} // namespace ZorvaneService
