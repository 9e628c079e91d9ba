// SPDX-License-Identifier: MIT
#pragma once

#include <QRect>
#include <QSize>
#include <QVector>

namespace ZorvaneClient {
namespace GUI {

/// The largest grid that a user can make, in rows and in columns.
constexpr int maxGridSide = 6;

/// A grid's number of rows and columns.
struct GridSize {
    int rows = 1;
    int columns = 1;
};

inline bool operator==(const GridSize &a, const GridSize &b)
{
    return a.rows == b.rows && a.columns == b.columns;
}

/// Ways through a grid.
enum class Direction { Left, Right, Up, Down };

/// The place of the area that lies next to `from` on that side, or -1: of those beyond its edge
/// the nearest, and one that lies beside it before any that is shifted past its corner.
int neighbour(const QVector<QRect> &areas, const QRect &from, Direction side);

/// The API::StreamQuality of a tile: the larger its share of the grid, the better. Spans are at
/// least 1.
int tileQuality(const GridSize &grid, int rowSpan, int columnSpan);

/// The size that the grid takes when a server of `cameras` cameras is dropped on it while
/// `freeCells` are free: the present size if they fit. Else a single cell becomes the smallest
/// square that holds them, and a larger grid gets more rows, each at most maxGridSide by
/// maxGridSide; so a stored grid of more rows than that shrinks.
GridSize gridSizeForServer(const GridSize &grid, int cameras, int freeCells);

} // namespace GUI
} // namespace ZorvaneClient
