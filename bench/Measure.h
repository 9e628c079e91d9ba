// SPDX-License-Identifier: MIT
#pragma once

#include <QElapsedTimer>

#include <time.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <functional>
#include <string>
#include <vector>

namespace ZorvaneClient {
namespace Bench {

/// On a clock that all processes of the machine share.
inline long long nowNanoseconds()
{
    return std::chrono::duration_cast<std::chrono::nanoseconds>(
               std::chrono::steady_clock::now().time_since_epoch())
        .count();
}

/// Processor time of this process, or what else `clock` counts.
inline double cpuMilliseconds(clockid_t clock = CLOCK_PROCESS_CPUTIME_ID)
{
    timespec time = {};
    clock_gettime(clock, &time);
    return time.tv_sec * 1e3 + time.tv_nsec / 1e6;
}

/// How long `work` takes.
inline double millisecondsOf(const std::function<void()> &work)
{
    QElapsedTimer timer;
    timer.start();
    work();
    return static_cast<double>(timer.nsecsElapsed()) / 1e6;
}

/// The best of some runs, since others share the machine. `prepare` comes before each run
/// and is not measured.
inline double bestMilliseconds(
    int runs, const std::function<void()> &work, const std::function<void()> &prepare = [] {})
{
    std::vector<double> times;
    for (int i = 0; i < runs; ++i) {
        prepare();
        times.push_back(millisecondsOf(work));
    }
    return *std::min_element(times.begin(), times.end());
}

/// Of an odd number of values.
inline double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values.at(values.size() / 2);
}

/// On which side of its limit a value has to stay.
enum class Bound { AtMost, AtLeast };

/// Prints the value beside its limit; true if it is within.
inline bool within(const std::string &what, double value, const char *unit, double limit,
                   Bound bound = Bound::AtMost)
{
    const bool good = bound == Bound::AtMost ? value <= limit : value >= limit;
    std::printf("%-4s  %-56s %9.2f %-4s  at %s %.2f\n", good ? "ok" : "OVER", what.c_str(), value,
                unit, bound == Bound::AtMost ? "most" : "least", limit);
    return good;
}

} // namespace Bench
} // namespace ZorvaneClient
