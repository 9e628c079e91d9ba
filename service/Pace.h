// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>

namespace ZorvaneService {

/// Says when what is played is to be sent.
class Pace
{
public:
    /// What is before `startMs` is due at once.
    Pace(std::int64_t startMs, int playSpeed) : firstMs(startMs), speed(playSpeed) {}

    /// How long it is until `momentMs` is due, less than nothing when it was before.
    std::int64_t leftMs(std::int64_t momentMs);

private:
    const std::int64_t firstMs;
    const int speed;
    std::chrono::steady_clock::time_point began = std::chrono::steady_clock::now();
};

} // namespace ZorvaneService
