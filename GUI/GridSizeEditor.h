// SPDX-License-Identifier: MIT
#pragma once

#include <QWidget>

#include "GUI/GridRules.h"

namespace ZorvaneClient {
namespace GUI {

/// The popup in which the mouse picks a grid's size across a matrix of little cells; a tool tip
/// says the size under it. Deletes itself when it closes.
class GridSizeEditor : public QWidget
{
    Q_OBJECT
    Q_DISABLE_COPY(GridSizeEditor)

public:
    explicit GridSizeEditor(QWidget *parent = nullptr);

    /// The size under `position` in a popup of `size`; 0 by 0 outside the matrix, but above it
    /// only the rows are 0 or less.
    static GridSize sizeAt(const QPoint &position, const QSize &size);

public slots:
    void setCurrentSize(int rows, int columns);

signals:
    void sizeSelected(int rows, int columns);

protected:
    void paintEvent(QPaintEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;

private:
    void mark(const GridSize &marked);
    void pick();
    void tell(const GridSize &size);

    GridSize current{0, 0};
    GridSize hovered{0, 0};
};

} // namespace GUI
} // namespace ZorvaneClient
