// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <map>
#include <optional>
#include <vector>

#include "service/Roster.h"

namespace ZorvaneService {

/// One recorded span, in milliseconds since the epoch, without its end.
struct Record {
    std::int64_t startMs;
    std::int64_t endMs;
};

/// What is recorded of the cameras. Asked from any thread.
class ArchiveCatalogue
{
public:
    virtual ~ArchiveCatalogue() = default;

    /// The camera's records that touch [startMs, endMs], ascending and apart. One that is still
    /// being written ends at the present, or soon after its last picture.
    virtual std::vector<Record> records(const CameraId &camera, std::int64_t startMs,
                                        std::int64_t endMs) const = 0;

    /// The record that holds the moment.
    std::optional<Record> recordAt(const CameraId &camera, std::int64_t momentMs) const;
    /// The first record that ends after the moment.
    std::optional<Record> recordFrom(const CameraId &camera, std::int64_t momentMs) const;
    /// Number of records of each local day that [startMs, endMs] touches, the day given as its
    /// noon in seconds since the epoch. A record across midnight counts for both days.
    std::map<std::int64_t, int> days(const CameraId &camera, std::int64_t startMs,
                                     std::int64_t endMs) const;
};

} // namespace ZorvaneService
