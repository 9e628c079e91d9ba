// SPDX-License-Identifier: MIT
#include "demo/Archive.h"

#include <algorithm>

#include "demo/RecordPlan.h"

namespace ZorvaneDemo {

namespace {

constexpr int keptDays = 30;

} // namespace

std::vector<Record> Archive::records(const CameraId &id, std::int64_t startMs,
                                     std::int64_t endMs) const
{
    std::vector<Record> result;
    const auto camera = world.inventedCamera(id);
    if (!camera)
        return result;
    const std::int64_t presentMs = nowMs();
    const auto add = [&](const std::vector<Record> &list) {
        for (Record record : list) {
            record.endMs = std::min(record.endMs, presentMs);
            if (record.startMs < record.endMs && record.endMs > startMs && record.startMs <= endMs)
                result.push_back(record);
        }
    };
    if (camera->records) {
        add(*camera->records);
        return result;
    }
    const LocalDay oldest = LocalDay::numbered(LocalDay::holding(presentMs).number - keptDays);
    const std::int64_t lastMs = std::min(endMs, presentMs);
    LocalDay day = LocalDay::holding(std::max(startMs, oldest.beginMs));
    // The last record of the day before may run on.
    if (day.beginMs > oldest.beginMs)
        add(plannedRecords(camera->number, LocalDay::numbered(day.number - 1)));
    for (; day.beginMs <= lastMs; day = day.next())
        add(plannedRecords(camera->number, day));
    return result;
}

} // namespace ZorvaneDemo
