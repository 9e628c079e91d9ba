// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

#include "demo/RecordPlan.h"
#include "demo/Server.h"

namespace ZorvaneDemo {

/// What the archive of a camera holds at one moment: the records that it was given or those of
/// its plan for the last days. A record that is still being written ends at that moment.
class Archive
{
public:
    Archive(const Camera &camera, std::int64_t presentMs);

    /// The records that touch [startMs, endMs], ascending.
    std::vector<Record> records(std::int64_t startMs, std::int64_t endMs) const;
    /// The record that holds the moment.
    std::optional<Record> recordAt(std::int64_t momentMs) const;
    /// The first record that ends after the moment.
    std::optional<Record> recordFrom(std::int64_t momentMs) const;
    /// Number of records of each local day that [startMs, endMs] touches, the day given as its
    /// noon in seconds since the epoch. A record across midnight counts for both days.
    std::map<std::int64_t, int> days(std::int64_t startMs, std::int64_t endMs) const;

private:
    const Camera camera;
    const std::int64_t presentMs;
    std::int64_t oldestMs = 0;
};

} // namespace ZorvaneDemo
