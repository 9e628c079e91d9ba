// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

namespace ZorvaneDemo {

/// One recorded span, in milliseconds since the epoch.
struct Record {
    std::int64_t startMs;
    std::int64_t endMs;
};

/// What the archive of camera `number` holds: at most one record in each hour, with gaps
/// that depend on the camera, for the last days until `nowMs`.
class Archive
{
public:
    Archive(int cameraNumber, std::int64_t present);

    /// The records that touch [startMs, endMs], ascending.
    std::vector<Record> records(std::int64_t startMs, std::int64_t endMs) const;
    /// The record that holds the moment.
    std::optional<Record> recordAt(std::int64_t momentMs) const;
    /// Records by local day, the day given as its noon in seconds since the epoch.
    std::map<std::int64_t, int> days(std::int64_t startMs, std::int64_t endMs) const;

private:
    std::optional<Record> recordOfHour(std::int64_t hour) const;

    int number;
    std::int64_t nowMs;
};

} // namespace ZorvaneDemo
