// SPDX-License-Identifier: MIT
#include "demo/RecordPlan.h"

#include <algorithm>
#include <array>

namespace ZorvaneDemo {

namespace {

// Times in milliseconds.
constexpr std::int64_t second = secondMs;
constexpr std::int64_t minute = minuteMs;
constexpr std::int64_t hour = 60 * minute;
constexpr std::int64_t shortestRecord = 2 * second;
constexpr int emptyDayPeriod = 7;

struct Range {
    std::int64_t least;
    std::int64_t most;
};

/// When a camera records.
struct Habit {
    std::int64_t from;  ///< after the begin of the day
    std::int64_t until; ///< after the begin of the next day
    Range record;
    Range gap;
    Range pauseFrom; ///< begin of the one long break, after the begin of the day
    Range pause;
};

// A habit that runs past midnight ends before it begins again.
constexpr std::array<Habit, 5> habits{{
    {10 * minute, 9 * minute, {55 * minute, hour}, {2 * second, 9 * second}, {0, 0}, {0, 0}},
    {0,
     -minute,
     {15 * minute, 50 * minute},
     {2 * minute, 20 * minute},
     {hour, 18 * hour},
     {2 * hour, 5 * hour}},
    {0, 0, {6 * second, 90 * second}, {5 * second, 6 * minute}, {0, 0}, {0, 0}},
    {7 * hour,
     -5 * hour,
     {25 * minute, 110 * minute},
     {5 * second, 3 * minute},
     {12 * hour, 13 * hour},
     {40 * minute, 75 * minute}},
    {21 * hour, 6 * hour, {4 * hour, 8 * hour}, {10 * second, 20 * minute}, {0, 0}, {0, 0}},
}};

class Random
{
public:
    Random(int number, std::int64_t day)
        : state(static_cast<std::uint64_t>(number) << 32 ^ static_cast<std::uint64_t>(day))
    {
    }

    std::int64_t in(const Range &range)
    {
        const auto count = static_cast<std::uint64_t>(range.most - range.least + 1);
        return range.least + static_cast<std::int64_t>(next() % count);
    }

private:
    std::uint64_t next()
    {
        state += 0x9e3779b97f4a7c15u;
        std::uint64_t mixed = state;
        mixed = (mixed ^ (mixed >> 30)) * 0xbf58476d1ce4e5b9u;
        mixed = (mixed ^ (mixed >> 27)) * 0x94d049bb133111ebu;
        return mixed ^ (mixed >> 31);
    }

    std::uint64_t state;
};

bool isEmpty(int number, std::int64_t day)
{
    return (day + number) % emptyDayPeriod == 0;
}

} // namespace

std::vector<Record> plannedRecords(int number, const LocalDay &day)
{
    std::vector<Record> result;
    if (isEmpty(number, day.number))
        return result;
    const Habit &habit = habits[static_cast<std::size_t>(number) % habits.size()];
    const LocalDay next = day.next();
    const std::int64_t overrun =
        isEmpty(number, next.number) ? std::min<std::int64_t>(habit.until, 0) : habit.until;
    const std::int64_t limit = next.beginMs + overrun;
    const std::int64_t lastStart = std::min(next.beginMs, limit - shortestRecord);

    Random random(number, day.number);
    const std::int64_t pauseBegin = day.beginMs + random.in(habit.pauseFrom);
    const std::int64_t pauseEnd = pauseBegin + random.in(habit.pause);
    std::int64_t start = day.beginMs + habit.from + random.in(habit.gap);
    while (start < lastStart) {
        if (start > pauseBegin - shortestRecord && start < pauseEnd) {
            start = pauseEnd;
            continue;
        }
        std::int64_t end = std::min(start + random.in(habit.record), limit);
        if (start < pauseBegin)
            end = std::min(end, pauseBegin);
        result.push_back({start, end});
        start = end + random.in(habit.gap);
    }
    return result;
}

} // namespace ZorvaneDemo
