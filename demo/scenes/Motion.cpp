// SPDX-License-Identifier: MIT
#include "demo/scenes/Motion.h"

#include <cmath>

namespace ZorvaneDemo {

namespace {

constexpr double minute = 60;

} // namespace

double progress(double seconds, double start, double duration)
{
    const double since = std::fmod(seconds - start + 2 * minute, minute);
    return since < duration ? since / duration : -1;
}

double eased(double part)
{
    return part * part * (3 - 2 * part);
}

} // namespace ZorvaneDemo
