// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstdint>
#include <optional>

namespace ZorvaneDemo {

/// The machine-readable strip at the foot of every picture: one row of cells over the whole
/// width, light for 1 and dark for 0, from left to right
///   4 cells 1 0 1 0, 14 bits camera number, 12 bits time, 8 bits check, 2 cells 0 1.
/// Numbers stand with the highest bit first. The time counts steps of 20 ms in the minute.
struct StripCode {
    static constexpr int cellCount = 40;
    static constexpr int maximumCamera = (1 << 14) - 1;
    static constexpr int timeStepMs = 20;
    /// The row is as high as the picture's height divided by this.
    static constexpr double heightDivisor = 22.5;
    static constexpr int darkLuma = 46;
    static constexpr int lightLuma = 118;

    using Cells = std::array<bool, cellCount>;

    int camera = 0;
    int milliseconds = 0;

    static std::uint8_t check(unsigned value)
    {
        unsigned crc = 0x5a;
        for (int bit = 25; bit >= 0; --bit) {
            const bool top = ((crc >> 7) ^ (value >> bit)) & 1u;
            crc = (crc << 1) & 0xffu;
            if (top)
                crc ^= 0x07u;
        }
        return static_cast<std::uint8_t>(crc);
    }

    Cells cells() const
    {
        const unsigned value = (static_cast<unsigned>(camera) << 12) |
                               (static_cast<unsigned>(milliseconds / timeStepMs) & 0xfffu);
        Cells result{};
        result[0] = result[2] = result[39] = true;
        for (int bit = 0; bit < 26; ++bit)
            result[4 + bit] = (value >> (25 - bit)) & 1u;
        const unsigned sum = check(value);
        for (int bit = 0; bit < 8; ++bit)
            result[30 + bit] = (sum >> (7 - bit)) & 1u;
        return result;
    }

    static std::optional<StripCode> fromCells(const Cells &cells)
    {
        if (!cells[0] || cells[1] || !cells[2] || cells[3] || cells[38] || !cells[39])
            return std::nullopt;
        unsigned value = 0;
        for (int bit = 0; bit < 26; ++bit)
            value = (value << 1) | (cells[4 + bit] ? 1u : 0u);
        unsigned sum = 0;
        for (int bit = 0; bit < 8; ++bit)
            sum = (sum << 1) | (cells[30 + bit] ? 1u : 0u);
        if (sum != check(value))
            return std::nullopt;
        StripCode code;
        code.camera = static_cast<int>(value >> 12);
        code.milliseconds = static_cast<int>(value & 0xfffu) * timeStepMs;
        return code;
    }
};

} // namespace ZorvaneDemo
