// SPDX-License-Identifier: MIT
#include "GUI/GridRules.h"

#include <algorithm>

#include "API/StreamQuality.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

// Cells of the grid for each cell of the tile: up to these the quality is high or middle.
constexpr int highQualityLimit = 4;
constexpr int middleQualityLimit = 9;

int smallestSquareFor(int cameras)
{
    int side = 1;
    while (side < maxGridSide && side * side < cameras)
        ++side;
    return side;
}

} // namespace

int tileQuality(const GridSize &grid, int rowSpan, int columnSpan)
{
    const int share = grid.rows * grid.columns / (rowSpan * columnSpan);
    if (share <= highQualityLimit)
        return API::HighQuality;
    return share <= middleQualityLimit ? API::MiddleQuality : API::LowQuality;
}

GridSize gridSizeForServer(const GridSize &grid, int cameras, int freeCells)
{
    const int shortfall = cameras - freeCells;
    if (shortfall <= 0)
        return grid;
    if (grid.rows == 1 && grid.columns == 1) {
        const int side = smallestSquareFor(cameras);
        return {side, side};
    }
    const int columns = std::max(grid.columns, 1);
    const int addedRows = (shortfall + columns - 1) / columns;
    return {std::min(grid.rows + addedRows, maxGridSide), grid.columns};
}

} // namespace GUI
} // namespace ZorvaneClient
