// SPDX-License-Identifier: MIT
#pragma once

#include <QRect>

#include "API/Types.h"

namespace ZorvaneClient {
namespace API {

/// A cell of a layout: a camera, if any, and where it stands, with row and column counted from
/// 0 and its span in rows and columns.
class LayoutCell
{
public:
    /// A cell nowhere, without a camera.
    LayoutCell() = default;
    /// Any numbers are taken; they are cut to a range in which no edge overflows.
    LayoutCell(CameraPtr cellCamera, int row, int column, int rowSpan = 1, int columnSpan = 1);

    int row() const { return area.left(); }
    int column() const { return area.top(); }
    int rowSpan() const { return area.width(); }
    int columnSpan() const { return area.height(); }

    CameraPtr camera;

    /// The same camera object on the same area.
    friend bool operator==(const LayoutCell &a, const LayoutCell &b)
    {
        return a.camera == b.camera && a.area == b.area;
    }
    friend bool operator!=(const LayoutCell &a, const LayoutCell &b) { return !(a == b); }

private:
    // Left is the row and top the column, so the width runs over rows and the height over
    // columns, as the stored `w` and `h` do.
    QRect area = QRect(-1, -1, 0, 0);
};

} // namespace API
} // namespace ZorvaneClient
