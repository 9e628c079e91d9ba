// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
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
    static constexpr int cameraBits = 14;
    static constexpr int timeBits = 12;
    static constexpr int valueBits = cameraBits + timeBits;
    static constexpr int checkBits = 8;
    static constexpr int valueCell = 4; ///< where the value begins
    static constexpr int checkCell = valueCell + valueBits;
    /// The cells that are the same in every strip.
    static constexpr std::array<int, 3> lightCells{0, 2, 39};
    static constexpr std::array<int, 3> darkCells{1, 3, 38};

    static constexpr int maximumCamera = (1 << cameraBits) - 1;
    static constexpr int timeStepMs = 20;
    /// The row is as high as the picture's height divided by this.
    static constexpr double heightDivisor = 22.5;
    static constexpr int darkLuma = 46;
    static constexpr int lightLuma = 118;

    using Cells = std::array<bool, cellCount>;

    int camera = 0;
    int milliseconds = 0;

    Cells cells() const
    {
        const auto steps = static_cast<unsigned>(milliseconds / timeStepMs);
        const unsigned value =
            (static_cast<unsigned>(camera) << timeBits) | (steps & ((1u << timeBits) - 1));
        Cells result{};
        for (const int cell : lightCells)
            result[cell] = true;
        put(value, valueBits, valueCell, &result);
        put(check(value), checkBits, checkCell, &result);
        return result;
    }

    static std::optional<StripCode> fromCells(const Cells &cells)
    {
        const auto isLight = [&cells](int cell) { return cells[cell]; };
        if (!std::all_of(lightCells.begin(), lightCells.end(), isLight) ||
            std::any_of(darkCells.begin(), darkCells.end(), isLight))
            return std::nullopt;
        const unsigned value = number(cells, valueCell, valueBits);
        if (number(cells, checkCell, checkBits) != check(value))
            return std::nullopt;
        StripCode code;
        code.camera = static_cast<int>(value >> timeBits);
        code.milliseconds = static_cast<int>(value & ((1u << timeBits) - 1)) * timeStepMs;
        return code;
    }

private:
    static void put(unsigned number, int bits, int firstCell, Cells *cells)
    {
        for (int bit = 0; bit < bits; ++bit)
            (*cells)[firstCell + bit] = (number >> (bits - 1 - bit)) & 1u;
    }

    static unsigned number(const Cells &cells, int firstCell, int bits)
    {
        unsigned result = 0;
        for (int bit = 0; bit < bits; ++bit)
            result = (result << 1) | (cells[firstCell + bit] ? 1u : 0u);
        return result;
    }

    /// A cyclic check of the value's bits.
    static std::uint8_t check(unsigned value)
    {
        unsigned crc = 0x5a;
        for (int bit = valueBits - 1; bit >= 0; --bit) {
            const bool top = ((crc >> 7) ^ (value >> bit)) & 1u;
            crc = (crc << 1) & 0xffu;
            if (top)
                crc ^= 0x07u;
        }
        return static_cast<std::uint8_t>(crc);
    }
};

} // namespace ZorvaneDemo
