// SPDX-License-Identifier: MIT
#pragma once

#include "GUI/DragFormats.h"
#include "tests/e2e/EndToEnd.h"

namespace ZorvaneClient::GUI {
class LayoutCard;
}

namespace ZorvaneClient::Tests {

/// Which camera should stand in which cell, by the numbers of their strips; 0: none.
struct WallPlan {
    WallPlan(int rows, int columns) : cells(rows, QVector<int>(columns)) {}

    int rows() const { return cells.size(); }
    int columns() const { return cells.first().size(); }
    void exchange(API::LayoutPoint a, API::LayoutPoint b);
    /// Keeps what stands inside the new size.
    void resize(int rows, int columns);
    /// Puts `camera` into the first empty cell, row by row.
    void append(int camera);
    /// Such as "3 . | . 7": rows from top to bottom, a point for an empty cell.
    QString text() const;

    QVector<QVector<int>> cells;
};

GUI::LayoutWidget *gridOf(GUI::MainWindow *window);
/// The tile or placeholder that covers the middle of a cell in a grid of so many cells; null
/// before the grid has been laid out.
QWidget *widgetInCell(GUI::LayoutWidget *grid, API::LayoutPoint cell, int rows, int columns);
/// What the picture of a grid shows, read from the strips, in the form of WallPlan::text(); a
/// point also for a tile without a readable picture.
using CellPlace = std::function<QRect(API::LayoutPoint)>;
QString wallIn(const QImage &grid, int rows, int columns, const CellPlace &placeOf);
/// The same of the window's painted grid; empty before it has been laid out.
QString paintedWall(GUI::MainWindow *window, int rows, int columns);
/// True once every tile of the window shows a later picture than now.
bool everyTileMoves(GUI::MainWindow *window);

/// Enters with `data`, which it takes over, and drops it on `target` or, where that refuses, on
/// what it stands in; false if nobody takes it.
bool dropOn(QWidget *target, QMimeData *data, Qt::DropAction action);

/// Presses the button of that object name in the window.
void press(GUI::MainWindow *window, const char *button);
/// The card of that caption in the list of layouts, or null.
GUI::LayoutCard *layoutCard(GUI::MainWindow *window, const QString &name);

} // namespace ZorvaneClient::Tests
