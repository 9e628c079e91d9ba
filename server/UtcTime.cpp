// SPDX-License-Identifier: MIT
#include "server/UtcTime.h"

#include <cstdio>
#include <ctime>

namespace ZorvaneServer {

namespace {

constexpr std::size_t dayLength = 10;
constexpr std::size_t mostDigits = 18;
constexpr std::string_view stampForm = "dddd-dd-ddTdd-dd-dd.dddZ";

/// Number of a day of the Gregorian calendar since 1970-01-01. Years begin in March here, so
/// that the leap day is the last of its year.
std::int64_t dayNumber(std::int64_t year, std::int64_t month, std::int64_t day)
{
    const std::int64_t marchYear = month > 2 ? year : year - 1;
    const std::int64_t marchMonth = month > 2 ? month - 3 : month + 9;
    constexpr std::int64_t epoch = 719'468;
    return marchYear * 365 + marchYear / 4 - marchYear / 100 + marchYear / 400 +
           (153 * marchMonth + 2) / 5 + day - 1 - epoch;
}

} // namespace

std::string utcStamp(std::int64_t momentMs)
{
    const std::time_t seconds = momentMs / secondMs;
    std::tm utc{};
    gmtime_r(&seconds, &utc);
    char text[utcStampLength + 1];
    const std::size_t length = std::strftime(text, sizeof text, "%Y-%m-%dT%H-%M-%S", &utc);
    char fraction[8];
    std::snprintf(fraction, sizeof fraction, ".%03dZ", static_cast<int>(momentMs % secondMs));
    return std::string(text, length) + fraction;
}

std::string utcDay(std::int64_t momentMs)
{
    return utcStamp(momentMs).substr(0, dayLength);
}

std::optional<std::int64_t> readDigits(std::string_view text)
{
    if (text.empty() || text.size() > mostDigits)
        return {};
    std::int64_t value = 0;
    for (const char digit : text) {
        if (digit < '0' || digit > '9')
            return {};
        value = value * 10 + (digit - '0');
    }
    return value;
}

std::optional<std::int64_t> readUtcStamp(std::string_view text)
{
    if (text.size() != stampForm.size())
        return {};
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool isDigit = text[i] >= '0' && text[i] <= '9';
        if (stampForm[i] == 'd' ? !isDigit : text[i] != stampForm[i])
            return {};
    }
    const auto number = [text](std::size_t at, std::size_t digits) {
        return *readDigits(text.substr(at, digits));
    };
    const std::int64_t year = number(0, 4);
    const std::int64_t month = number(5, 2);
    const std::int64_t day = number(8, 2);
    if (year < 1970 || month < 1 || month > 12 || day < 1 || day > 31)
        return {};
    const std::int64_t minutes = number(11, 2) * 60 + number(14, 2);
    return dayNumber(year, month, day) * dayMs + minutes * minuteMs + number(17, 2) * secondMs +
           number(20, 3);
}

} // namespace ZorvaneServer
