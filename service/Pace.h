// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "service/LocalTime.h"

namespace ZorvaneService {

/// Says when what is played is to be sent.
class Pace
{
public:
    /// What is before `startMs` is due at once.
    Pace(std::int64_t startMs, int playSpeed) : firstMs(startMs), speed(playSpeed) {}

    /// When `momentMs` is due, by the wall clock; what isn't recorded yet is waited for.
    std::int64_t dueMs(std::int64_t momentMs);

private:
    const std::int64_t firstMs;
    const int speed;
    std::int64_t beganMs = nowMs();
};

} // namespace ZorvaneService
