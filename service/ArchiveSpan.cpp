// SPDX-License-Identifier: MIT
#include "service/ArchiveSpan.h"

#include <algorithm>

#include "service/LocalTime.h"

namespace ZorvaneService {

namespace {

constexpr int largestSpeed = 32;
constexpr std::int64_t largestUploadRate = 1'000'000;

} // namespace

std::optional<ArchiveSpan> ArchiveSpan::from(const HttpRequest &request)
{
    auto parameters = request.parameters();
    ArchiveSpan span;
    span.startMs = numberOr(parameters["startTime"], -1);
    if (span.startMs < 0 || span.startMs > largestTime)
        return std::nullopt;
    if (parameters.count("endTime") == 0) {
        span.startMs *= secondMs;
        span.speed = static_cast<int>(
            std::clamp<std::int64_t>(numberOr(parameters["speed"], 1), 1, largestSpeed));
        return span;
    }
    span.endMs = std::min(numberOr(parameters["endTime"], -1), nowMs());
    span.bytesPerMs =
        std::clamp<std::int64_t>(numberOr(parameters["uploadRate"], 0), 0, largestUploadRate);
    return span.endMs < 0 ? std::nullopt : std::optional<ArchiveSpan>(span);
}

} // namespace ZorvaneService
