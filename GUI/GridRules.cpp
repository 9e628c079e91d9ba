// SPDX-License-Identifier: MIT
#include "GUI/GridRules.h"

#include <algorithm>
#include <cstdlib>
#include <tuple>

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

/// The same area in a picture that is turned or mirrored so that `side` lies to the right.
QRect turned(const QRect &area, Direction side)
{
    const bool isUpright = side == Direction::Up || side == Direction::Down;
    const QRect lying = isUpright ? QRect(area.y(), area.x(), area.height(), area.width()) : area;
    if (side == Direction::Right || side == Direction::Down)
        return lying;
    return QRect(QPoint(-lying.right(), lying.top()), lying.size());
}

} // namespace

int neighbour(const QVector<QRect> &areas, const QRect &from, Direction side)
{
    const QRect start = turned(from, side);
    int best = -1;
    std::tuple<bool, int, int> bestRank;
    for (int place = 0; place < areas.size(); ++place) {
        const QRect area = turned(areas.at(place), side);
        if (area.left() <= start.right())
            continue;
        const bool isShifted = area.bottom() < start.top() || start.bottom() < area.top();
        const std::tuple<bool, int, int> rank(isShifted, area.left(),
                                              std::abs(area.center().y() - start.center().y()));
        if (best < 0 || rank < bestRank) {
            best = place;
            bestRank = rank;
        }
    }
    return best;
}

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
