// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace ZorvaneService {

constexpr std::int64_t secondMs = 1000;
constexpr std::int64_t minuteMs = 60 * secondMs;
constexpr int secondsPerMinute = minuteMs / secondMs;

/// Milliseconds since the epoch.
std::int64_t nowMs();
/// Sleeps until the wall clock shows `momentMs`.
void sleepUntil(std::int64_t momentMs);

/// A day of the machine's time zone, 23 to 25 hours long where the clock is changed.
struct LocalDay {
    std::int64_t number;  ///< of the date, counted from 1970-01-01
    std::int64_t beginMs; ///< its first moment since the epoch, not always 00:00
    std::int64_t noonMs;

    static LocalDay numbered(std::int64_t number);
    static LocalDay holding(std::int64_t momentMs);
    LocalDay next() const { return numbered(number + 1); }
};

} // namespace ZorvaneService
