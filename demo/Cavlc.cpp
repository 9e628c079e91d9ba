// SPDX-License-Identifier: MIT
#include "demo/Cavlc.h"

#include <cstdint>
#include <cstdlib>

namespace ZorvaneDemo {

namespace {

struct Code {
    std::uint8_t bits;
    std::uint8_t length;
};

// coeff_token for 0 <= nC < 2, by trailing ones and total coefficients (0 to 4).
constexpr Code coeffToken[4][5] = {{{1, 1}, {5, 6}, {7, 8}, {7, 9}, {7, 10}},
                                   {{0, 0}, {1, 2}, {4, 6}, {6, 8}, {6, 9}},
                                   {{0, 0}, {0, 0}, {1, 3}, {5, 7}, {5, 8}},
                                   {{0, 0}, {0, 0}, {0, 0}, {3, 5}, {3, 6}}};
// total_zeros by total coefficients (1 to 4) and zeros (0 to 4).
constexpr Code totalZeros[4][5] = {{{1, 1}, {3, 3}, {2, 3}, {3, 4}, {2, 4}},
                                   {{7, 3}, {6, 3}, {5, 3}, {4, 3}, {3, 3}},
                                   {{5, 4}, {7, 3}, {6, 3}, {5, 3}, {4, 4}},
                                   {{3, 5}, {7, 3}, {5, 4}, {4, 4}, {6, 3}}};
// run_before by zeros left (1 to 4) and run.
constexpr Code runBefore[4][5] = {{{1, 1}, {0, 1}, {0, 0}, {0, 0}, {0, 0}},
                                  {{1, 1}, {1, 2}, {0, 2}, {0, 0}, {0, 0}},
                                  {{3, 2}, {2, 2}, {1, 2}, {0, 2}, {0, 0}},
                                  {{3, 2}, {2, 2}, {1, 2}, {1, 3}, {0, 3}}};

void put(BitWriter &out, Code code)
{
    out.bits(code.bits, code.length);
}

void putLevel(BitWriter &out, int level, bool lowered, int *suffixLength)
{
    int code = level > 0 ? 2 * level - 2 : -2 * level - 1;
    if (lowered)
        code -= 2;
    if (*suffixLength == 0) {
        if (code < 14) {
            out.bits(1, code + 1);
        } else if (code < 30) {
            out.bits(1, 15);
            out.bits(static_cast<unsigned>(code - 14), 4);
        } else {
            out.bits(1, 16);
            out.bits(static_cast<unsigned>(code - 30), 12);
        }
        *suffixLength = 1;
    } else if (code < (15 << *suffixLength)) {
        out.bits(1, (code >> *suffixLength) + 1);
        out.bits(static_cast<unsigned>(code) & ((1u << *suffixLength) - 1), *suffixLength);
    } else {
        out.bits(1, 16);
        out.bits(static_cast<unsigned>(code - (15 << *suffixLength)), 12);
    }
    if (std::abs(level) > (3 << (*suffixLength - 1)) && *suffixLength < 6)
        ++*suffixLength;
}

/// Levels that aren't 0, each with the zeros before it.
struct Runs {
    explicit Runs(const Cavlc::LumaDc &levels)
    {
        int gap = 0;
        for (const int level : levels) {
            if (level == 0) {
                ++gap;
                continue;
            }
            value[total] = level;
            run[total] = gap;
            zeros += gap;
            gap = 0;
            ++total;
        }
    }

    /// How many of the last ones are 1 or -1, up to three.
    int trailingOnes() const
    {
        int ones = 0;
        while (ones < 3 && ones < total && std::abs(value[total - 1 - ones]) == 1)
            ++ones;
        return ones;
    }

    Cavlc::LumaDc value{};
    Cavlc::LumaDc run{};
    int total = 0;
    int zeros = 0;
};

} // namespace

void Cavlc::putLumaDc(BitWriter &out, const LumaDc &levels)
{
    const Runs runs(levels);
    const int total = runs.total;
    const int ones = runs.trailingOnes();
    put(out, coeffToken[ones][total]);
    if (total == 0)
        return;
    int suffixLength = 0;
    for (int i = 0; i < total; ++i) {
        const int level = runs.value[total - 1 - i];
        if (i < ones)
            out.bits(level < 0 ? 1 : 0, 1);
        else
            putLevel(out, level, i == ones && ones < 3, &suffixLength);
    }
    int zeros = runs.zeros;
    put(out, totalZeros[total - 1][zeros]);
    for (int i = total - 1; i > 0 && zeros > 0; --i) {
        put(out, runBefore[zeros - 1][runs.run[i]]);
        zeros -= runs.run[i];
    }
}

void Cavlc::putChromaDc(BitWriter &out, int level)
{
    out.bits(7, 6);
    int suffixLength = 0;
    putLevel(out, level, true, &suffixLength);
    out.bits(1, 1);
}

} // namespace ZorvaneDemo
