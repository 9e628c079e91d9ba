// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>

namespace ZorvaneServer {

/// Since the epoch.
inline std::chrono::microseconds wallTime()
{
    using namespace std::chrono;
    return duration_cast<microseconds>(system_clock::now().time_since_epoch());
}

inline std::int64_t wallMs()
{
    return wallTime() / std::chrono::milliseconds(1);
}

/// By a clock that only runs.
inline std::chrono::microseconds steadyTime()
{
    using namespace std::chrono;
    return duration_cast<microseconds>(steady_clock::now().time_since_epoch());
}

} // namespace ZorvaneServer
