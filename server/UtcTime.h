// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace ZorvaneServer {

constexpr std::int64_t secondMs = 1000;
constexpr std::int64_t minuteMs = 60 * secondMs;
constexpr std::int64_t dayMs = 24 * 60 * minuteMs;

/// "2026-11-22".
std::string utcDay(std::int64_t momentMs);
/// "2026-11-22T10-16-08.123Z": fit for a file name on every system, and in order by text.
std::string utcStamp(std::int64_t momentMs);
constexpr std::size_t utcStampLength = 24;
/// The moment of such a stamp, of the years 1970 to 9999.
std::optional<std::int64_t> readUtcStamp(std::string_view text);

/// Only digits, at most 18 of them, and at least one.
std::optional<std::int64_t> readDigits(std::string_view text);

} // namespace ZorvaneServer
