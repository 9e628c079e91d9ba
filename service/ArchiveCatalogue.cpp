// SPDX-License-Identifier: MIT
#include "service/ArchiveCatalogue.h"

#include <algorithm>
#include <cstddef>

#include "service/LocalTime.h"

namespace ZorvaneService {

namespace {

std::optional<Record> firstOf(const std::vector<Record> &records)
{
    return records.empty() ? std::nullopt : std::optional<Record>(records.front());
}

} // namespace

std::optional<Record> ArchiveCatalogue::recordAt(const CameraId &camera,
                                                 std::int64_t momentMs) const
{
    return firstOf(records(camera, momentMs, momentMs));
}

std::optional<Record> ArchiveCatalogue::recordFrom(const CameraId &camera,
                                                   std::int64_t momentMs) const
{
    return firstOf(records(camera, momentMs, nowMs()));
}

std::map<std::int64_t, int> ArchiveCatalogue::days(const CameraId &camera, std::int64_t startMs,
                                                   std::int64_t endMs) const
{
    std::map<std::int64_t, int> result;
    const std::int64_t present = nowMs();
    if (startMs > present)
        return result;
    const std::int64_t firstMs = LocalDay::holding(startMs).beginMs;
    const std::int64_t endOfLastMs = LocalDay::holding(std::min(endMs, present)).next().beginMs;
    // A span may begin long before the archive: only days with records are looked at.
    LocalDay day{};
    std::int64_t dayEndMs = 0;
    const auto goTo = [&](const LocalDay &of) {
        day = of;
        dayEndMs = day.next().beginMs;
    };
    for (const Record &record : records(camera, firstMs, endOfLastMs - 1)) {
        if (const std::int64_t fromMs = std::max(record.startMs, firstMs); fromMs >= dayEndMs)
            goTo(LocalDay::holding(fromMs));
        ++result[day.noonMs / secondMs];
        while (dayEndMs < std::min(record.endMs, endOfLastMs)) {
            goTo(day.next());
            ++result[day.noonMs / secondMs];
        }
    }
    return result;
}

} // namespace ZorvaneService
