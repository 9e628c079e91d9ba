// SPDX-License-Identifier: MIT
#include "demo/StripSlice.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdlib>

namespace ZorvaneDemo {

namespace {

constexpr int sliceQp = 36;
/// One step of a luma DC level at sliceQp changes a sample by 160/64.
constexpr int levelScale = 160;
constexpr int residualShift = 6;
constexpr unsigned idrNal = 5;
/// Chroma DC levels that tint the strip a slate blue.
constexpr int tintCb = 3;
constexpr int tintCr = -2;

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

/// One block of luma DC levels in scan order; only the first five can be other than 0.
void putLumaDc(BitWriter &out, const std::array<int, 5> &levels)
{
    std::array<int, 5> value{};
    std::array<int, 5> run{};
    int total = 0;
    int zeros = 0;
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
    int ones = 0;
    while (ones < 3 && ones < total && std::abs(value[total - 1 - ones]) == 1)
        ++ones;
    put(out, coeffToken[ones][total]);
    if (total == 0)
        return;
    int suffixLength = 0;
    for (int i = 0; i < total; ++i) {
        const int level = value[total - 1 - i];
        if (i < ones)
            out.bits(level < 0 ? 1 : 0, 1);
        else
            putLevel(out, level, i == ones && ones < 3, &suffixLength);
    }
    put(out, totalZeros[total - 1][zeros]);
    for (int i = total - 1; i > 0 && zeros > 0; --i) {
        put(out, runBefore[zeros - 1][run[i]]);
        zeros -= run[i];
    }
}

/// One chroma DC block whose only level is the first, between 2 and 8 either way.
void putChromaDc(BitWriter &out, int level)
{
    out.bits(7, 6);
    int suffixLength = 0;
    putLevel(out, level, true, &suffixLength);
    out.bits(1, 1);
}

/// Luma of the four 8x8 quarters of a macroblock: top left, top right, bottom left, right.
using Quarters = std::array<int, 4>;

int rounded(double value)
{
    return static_cast<int>(std::lround(value));
}

std::array<int, 5> levelsFor(const Quarters &target, int prediction)
{
    const double step = levelScale / 64.0;
    const auto level = [&](int a, int b, int c, int d) {
        return (a * (target[0] - prediction) + b * (target[1] - prediction) +
                c * (target[2] - prediction) + d * (target[3] - prediction)) /
               4.0 / step;
    };
    return {rounded(level(1, 1, 1, 1)), rounded(level(1, -1, 1, -1)), rounded(level(1, 1, -1, -1)),
            0, rounded(level(1, -1, -1, 1))};
}

Quarters reconstructed(const std::array<int, 5> &c, int prediction)
{
    const auto sample = [&](int horizontal, int vertical) {
        const int sum = c[0] + horizontal * c[1] + vertical * c[2] + horizontal * vertical * c[4];
        const int residual = (sum * levelScale + (1 << (residualShift - 1))) >> residualShift;
        return std::clamp(prediction + residual, 0, 255);
    };
    return {sample(1, 1), sample(-1, 1), sample(1, -1), sample(-1, -1)};
}

int predictionFrom(const Quarters *left, const Quarters *top)
{
    const int leftSum = left ? 8 * ((*left)[1] + (*left)[3]) : 0;
    const int topSum = top ? 8 * ((*top)[2] + (*top)[3]) : 0;
    if (left && top)
        return (leftSum + topSum + 16) >> 5;
    if (left || top)
        return (leftSum + topSum + 8) >> 4;
    return 128;
}

Quarters wanted(const StripLayout &layout, const StripCode::Cells &cells, int column, int row)
{
    Quarters result{};
    const int width = layout.widthMbs * 16;
    for (int quarter = 0; quarter < 4; ++quarter) {
        const int x = column * 16 + quarter % 2 * 8 + 4;
        const int y = row * 16 + quarter / 2 * 8 + 4;
        const int cell = x * StripCode::cellCount / width;
        const bool light = y >= layout.cellTop && cells[static_cast<std::size_t>(cell)];
        result[static_cast<std::size_t>(quarter)] =
            light ? StripCode::lightLuma : StripCode::darkLuma;
    }
    return result;
}

void putHeader(BitWriter &out, const StripLayout &layout, const StripPicture &picture)
{
    const bool idr = (picture.nalHeader & 0x1f) == idrNal;
    out.ue(static_cast<unsigned>(layout.firstRow) * layout.widthMbs);
    out.ue(2); // an I slice among others
    out.ue(0);
    out.bits(picture.frameNum, layout.frameNumBits);
    if (idr)
        out.ue(picture.idrPicId);
    if (layout.pocType == 0)
        out.bits(picture.pocLsb, layout.pocBits);
    if (picture.nalHeader & 0x60) {
        if (idr)
            out.bits(0, 2);
        else
            out.bits(0, 1);
    }
    out.se(sliceQp - layout.initialQp);
    out.ue(1); // no deblocking: the cells keep their edges
}

} // namespace

bool StripLayout::readParameterSets(const Bytes &sps, const Bytes &pps)
{
    const Bytes spsPayload = withoutEmulation(sps.data(), sps.size());
    BitReader s(spsPayload.data(), spsPayload.size());
    s.bits(8);
    const unsigned profile = s.bits(8);
    s.bits(16);
    s.ue();
    if (profile != 66 && profile != 77)
        return false;
    frameNumBits = static_cast<std::uint8_t>(s.ue() + 4);
    pocType = static_cast<std::uint8_t>(s.ue());
    if (pocType == 1)
        return false;
    if (pocType == 0)
        pocBits = static_cast<std::uint8_t>(s.ue() + 4);

    const Bytes ppsPayload = withoutEmulation(pps.data(), pps.size());
    BitReader p(ppsPayload.data(), ppsPayload.size());
    p.bits(8);
    p.ue();
    p.ue();
    const bool cabac = p.bits(1);
    const bool fieldOrder = p.bits(1);
    const unsigned sliceGroups = p.ue();
    p.ue();
    p.ue();
    p.bits(3);
    initialQp = static_cast<std::int8_t>(26 + p.se());
    p.se();
    p.se();
    const bool deblockingControl = p.bits(1);
    p.bits(1);
    const bool redundant = p.bits(1);
    return !cabac && !fieldOrder && sliceGroups == 0 && deblockingControl && !redundant;
}

StripPicture StripPicture::fromSlice(const StripLayout &layout, const std::uint8_t *nal,
                                     std::size_t size)
{
    constexpr std::size_t headerBytes = 32;
    const Bytes payload = withoutEmulation(nal, std::min(size, headerBytes));
    BitReader in(payload.data(), payload.size());
    StripPicture picture;
    picture.nalHeader = static_cast<std::uint8_t>(in.bits(8));
    in.ue();
    in.ue();
    in.ue();
    picture.frameNum = static_cast<std::uint16_t>(in.bits(layout.frameNumBits));
    if ((picture.nalHeader & 0x1f) == idrNal)
        picture.idrPicId = static_cast<std::uint16_t>(in.ue());
    if (layout.pocType == 0)
        picture.pocLsb = static_cast<std::uint16_t>(in.bits(layout.pocBits));
    return picture;
}

void appendStripSlice(const StripLayout &layout, const StripPicture &picture, const StripCode &code,
                      Bytes *out)
{
    const StripCode::Cells cells = code.cells();
    BitWriter writer;
    writer.bits(picture.nalHeader, 8);
    putHeader(writer, layout, picture);
    std::vector<Quarters> above(layout.widthMbs);
    for (int row = 0; row < layout.rows; ++row) {
        Quarters left{};
        for (int column = 0; column < layout.widthMbs; ++column) {
            const bool first = row == 0 && column == 0;
            Quarters &top = above[static_cast<std::size_t>(column)];
            const int prediction =
                predictionFrom(column > 0 ? &left : nullptr, row > 0 ? &top : nullptr);
            const auto levels = levelsFor(wanted(layout, cells, column, row), prediction);
            writer.ue(first ? 7 : 3); // 16x16 by DC, with or without chroma DC
            writer.ue(0);
            writer.se(0);
            putLumaDc(writer, levels);
            if (first) {
                putChromaDc(writer, tintCb);
                putChromaDc(writer, tintCr);
            }
            left = reconstructed(levels, prediction);
            top = left;
        }
    }
    writer.trailing();
    const Bytes nal = withEmulation(writer.bytes());
    for (int shift = 24; shift >= 0; shift -= 8)
        out->push_back(static_cast<std::uint8_t>(nal.size() >> shift));
    out->insert(out->end(), nal.begin(), nal.end());
}

} // namespace ZorvaneDemo
