// SPDX-License-Identifier: MIT
#include "demo/Archive.h"

#include <algorithm>

namespace ZorvaneDemo {

namespace {

constexpr int keptDays = 30;

} // namespace

Archive::Archive(const Camera &whose, std::int64_t present) : camera(whose), presentMs(present)
{
    if (!camera.records)
        oldestMs = LocalDay::numbered(LocalDay::holding(presentMs).number - keptDays).beginMs;
    else if (!camera.records->empty())
        oldestMs = camera.records->front().startMs;
}

std::vector<Record> Archive::records(std::int64_t startMs, std::int64_t endMs) const
{
    std::vector<Record> result;
    const auto add = [&](const std::vector<Record> &list) {
        for (Record record : list) {
            record.endMs = std::min(record.endMs, presentMs);
            if (record.startMs < record.endMs && record.endMs > startMs && record.startMs <= endMs)
                result.push_back(record);
        }
    };
    if (camera.records) {
        add(*camera.records);
        return result;
    }
    const std::int64_t lastMs = std::min(endMs, presentMs);
    LocalDay day = LocalDay::holding(std::max(startMs, oldestMs));
    // The last record of the day before may run on.
    if (day.beginMs > oldestMs)
        add(plannedRecords(camera.number, LocalDay::numbered(day.number - 1)));
    for (; day.beginMs <= lastMs; day = day.next())
        add(plannedRecords(camera.number, day));
    return result;
}

std::optional<Record> Archive::recordAt(std::int64_t momentMs) const
{
    const std::vector<Record> found = records(momentMs, momentMs);
    return found.empty() ? std::nullopt : std::optional<Record>(found.front());
}

std::optional<Record> Archive::recordFrom(std::int64_t momentMs) const
{
    const std::vector<Record> found = records(momentMs, presentMs);
    return found.empty() ? std::nullopt : std::optional<Record>(found.front());
}

std::map<std::int64_t, int> Archive::days(std::int64_t startMs, std::int64_t endMs) const
{
    std::map<std::int64_t, int> result;
    const std::int64_t lastMs = std::min(endMs, presentMs);
    for (LocalDay day = LocalDay::holding(std::max(startMs, oldestMs)); day.beginMs <= lastMs;) {
        const LocalDay next = day.next();
        const auto count = static_cast<int>(records(day.beginMs, next.beginMs - 1).size());
        if (count > 0)
            result[day.noonMs / secondMs] = count;
        day = next;
    }
    return result;
}

} // namespace ZorvaneDemo
