// SPDX-License-Identifier: MIT
#include "service/LocalTime.h"

#include <chrono>
#include <ctime>
#include <thread>

namespace ZorvaneService {

namespace {

constexpr int noonHour = 12;
constexpr std::time_t hourSeconds = 3600;
constexpr std::time_t daySeconds = 24 * hourSeconds;
// From noon back to a moment that is certainly of the day before.
constexpr std::time_t backSeconds = 18 * hourSeconds;

std::int64_t dateNumber(std::time_t moment)
{
    std::tm local{};
    localtime_r(&moment, &local);
    local.tm_hour = 0;
    local.tm_min = 0;
    local.tm_sec = 0;
    return timegm(&local) / daySeconds;
}

} // namespace

std::int64_t nowMs()
{
    using namespace std::chrono;
    return duration_cast<milliseconds>(system_clock::now().time_since_epoch()).count();
}

void sleepUntil(std::int64_t momentMs)
{
    const std::int64_t left = momentMs - nowMs();
    if (left > 0)
        std::this_thread::sleep_for(std::chrono::milliseconds(left));
}

LocalDay LocalDay::numbered(std::int64_t number)
{
    const std::time_t date = number * daySeconds;
    std::tm local{};
    gmtime_r(&date, &local);
    local.tm_hour = noonHour;
    local.tm_isdst = -1;
    const std::time_t noon = std::mktime(&local);

    std::time_t before = noon - backSeconds;
    std::time_t begin = noon;
    while (begin - before > 1) {
        const std::time_t middle = before + (begin - before) / 2;
        (dateNumber(middle) < number ? before : begin) = middle;
    }
    return {number, begin * secondMs, noon * secondMs};
}

LocalDay LocalDay::holding(std::int64_t momentMs)
{
    return numbered(dateNumber(momentMs / secondMs));
}

} // namespace ZorvaneService
