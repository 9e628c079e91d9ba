// SPDX-License-Identifier: MIT
#include "demo/Archive.h"

#include <algorithm>
#include <ctime>

namespace ZorvaneDemo {

namespace {

constexpr std::int64_t minuteMs = 60'000;
constexpr std::int64_t hourMs = 60 * minuteMs;
constexpr std::int64_t keptMs = 14 * 24 * hourMs;
constexpr std::int64_t recordMs = 52 * minuteMs;
constexpr int startSpreadMinutes = 8;
// Of each so many hours one is missing.
constexpr int gapPeriod = 7;

std::int64_t noonOf(std::int64_t momentMs)
{
    const auto seconds = static_cast<std::time_t>(momentMs / 1000);
    std::tm local{};
    localtime_r(&seconds, &local);
    local.tm_hour = 12;
    local.tm_min = 0;
    local.tm_sec = 0;
    local.tm_isdst = -1;
    return static_cast<std::int64_t>(std::mktime(&local));
}

} // namespace

Archive::Archive(int cameraNumber, std::int64_t present) : number(cameraNumber), nowMs(present)
{
}

std::optional<Record> Archive::recordOfHour(std::int64_t hour) const
{
    if ((hour + number) % gapPeriod == 0)
        return std::nullopt;
    Record record{};
    record.startMs = hour * hourMs + number % startSpreadMinutes * minuteMs;
    record.endMs = std::min(record.startMs + recordMs, nowMs);
    if (record.startMs < nowMs - keptMs || record.startMs >= record.endMs)
        return std::nullopt;
    return record;
}

std::vector<Record> Archive::records(std::int64_t startMs, std::int64_t endMs) const
{
    std::vector<Record> result;
    const std::int64_t first = std::max(startMs, nowMs - keptMs) / hourMs - 1;
    const std::int64_t last = std::min(endMs, nowMs) / hourMs;
    for (std::int64_t hour = first; hour <= last; ++hour) {
        const auto record = recordOfHour(hour);
        if (record && record->endMs > startMs && record->startMs <= endMs)
            result.push_back(*record);
    }
    return result;
}

std::optional<Record> Archive::recordAt(std::int64_t momentMs) const
{
    for (const Record &record : records(momentMs, momentMs)) {
        if (record.startMs <= momentMs && momentMs < record.endMs)
            return record;
    }
    return std::nullopt;
}

std::map<std::int64_t, int> Archive::days(std::int64_t startMs, std::int64_t endMs) const
{
    std::map<std::int64_t, int> result;
    for (const Record &record : records(startMs, endMs)) {
        const std::int64_t first = noonOf(record.startMs);
        const std::int64_t last = noonOf(record.endMs - 1);
        ++result[first];
        if (last != first)
            ++result[last];
    }
    return result;
}

} // namespace ZorvaneDemo
