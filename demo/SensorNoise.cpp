// SPDX-License-Identifier: MIT
#include "demo/SensorNoise.h"

#include <cstddef>

namespace ZorvaneDemo {

namespace {

/// So many that no place in them comes again soon.
constexpr std::size_t grainCount = 1u << 20;
/// A grain is the sum of so many dice, each from -2 to 2, which is a bell of deviation 2.8.
constexpr int dice = 4;
constexpr std::uint32_t diceSides = 5;

} // namespace

SensorNoise::SensorNoise() : grains(grainCount)
{
    for (std::int8_t &grain : grains) {
        int sum = 0;
        for (int die = 0; die < dice; ++die)
            sum += static_cast<int>(next() % diceSides) - static_cast<int>(diceSides / 2);
        grain = static_cast<std::int8_t>(sum);
    }
}

const std::int8_t *SensorNoise::line(int width)
{
    return grains.data() + next() % (grains.size() - static_cast<std::size_t>(width));
}

std::uint32_t SensorNoise::next()
{
    state ^= state << 13;
    state ^= state >> 17;
    state ^= state << 5;
    return state;
}

} // namespace ZorvaneDemo
