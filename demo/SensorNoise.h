// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

namespace ZorvaneDemo {

/// What a camera's sensor adds to each line of each picture. Every run is the same.
class SensorNoise
{
public:
    SensorNoise();

    /// What to add to the next `width` samples.
    const std::int8_t *line(int width);

private:
    std::uint32_t next();

    std::uint32_t state = 0x9e3779b9u;
    std::vector<std::int8_t> grains;
};

} // namespace ZorvaneDemo
