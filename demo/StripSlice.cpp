// SPDX-License-Identifier: MIT
#include "demo/StripSlice.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "demo/Cavlc.h"
#include "service/NalUnit.h"

namespace ZorvaneDemo {

namespace {

constexpr int sliceQp = 36;
/// One step of a luma DC level at sliceQp changes a sample by levelScale / 2^residualShift.
constexpr int levelScale = 160;
constexpr int residualShift = 6;
/// Chroma DC levels that tint the strip a slate blue.
constexpr int tintCb = 3;
constexpr int tintCr = -2;

/// Luma of the four 8x8 quarters of a macroblock: top left, top right, bottom left, right.
using Quarters = std::array<int, 4>;

int rounded(double value)
{
    return static_cast<int>(std::lround(value));
}

Cavlc::LumaDc levelsFor(const Quarters &target, int prediction)
{
    const double step = levelScale / static_cast<double>(1 << residualShift);
    const auto level = [&](int a, int b, int c, int d) {
        return (a * (target[0] - prediction) + b * (target[1] - prediction) +
                c * (target[2] - prediction) + d * (target[3] - prediction)) /
               4.0 / step;
    };
    return {rounded(level(1, 1, 1, 1)), rounded(level(1, -1, 1, -1)), rounded(level(1, 1, -1, -1)),
            0, rounded(level(1, -1, -1, 1))};
}

Quarters reconstructed(const Cavlc::LumaDc &c, int prediction)
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
    constexpr int side = macroblock / 2;
    Quarters result{};
    const int width = layout.widthMbs * macroblock;
    for (int quarter = 0; quarter < 4; ++quarter) {
        const int x = column * macroblock + quarter % 2 * side + side / 2;
        const int y = row * macroblock + quarter / 2 * side + side / 2;
        const int cell = x * StripCode::cellCount / width;
        const bool light = y >= layout.cellTop && cells[static_cast<std::size_t>(cell)];
        result[static_cast<std::size_t>(quarter)] =
            light ? StripCode::lightLuma : StripCode::darkLuma;
    }
    return result;
}

void putHeader(BitWriter &out, const StripLayout &layout, const StripPicture &picture)
{
    out.ue(static_cast<unsigned>(layout.firstRow) * layout.widthMbs);
    out.ue(2); // an I slice among others
    out.ue(0);
    out.bits(picture.frameNum, layout.frameNumBits);
    if (picture.isIdr())
        out.ue(picture.idrPicId);
    if (layout.pocType == 0)
        out.bits(picture.pocLsb, layout.pocBits);
    if (picture.isReference())
        out.bits(0, picture.isIdr() ? 2 : 1); // nothing about what is kept for reference
    out.se(sliceQp - layout.initialQp);
    out.ue(1); // no deblocking: the cells keep their edges
}

} // namespace

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
            Cavlc::putLumaDc(writer, levels);
            if (first) {
                Cavlc::putChromaDc(writer, tintCb);
                Cavlc::putChromaDc(writer, tintCr);
            }
            left = reconstructed(levels, prediction);
            top = left;
        }
    }
    writer.trailing();
    const Bytes nal = withEmulation(writer.bytes());
    appendWithLength({nal.data(), nal.size()}, out);
}

} // namespace ZorvaneDemo
