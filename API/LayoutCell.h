// SPDX-License-Identifier: MIT
#pragma once

#include <QRect>

#include "API/Types.h"

namespace ZorvaneClient {
namespace API {

/// A cell of a layout: a camera, if any, and where it stands. In `area` left is the row and
/// top the column, so the width runs over rows and the height over columns.
struct LayoutCell {
    CameraPtr camera;
    QRect area = QRect(-1, -1, 0, 0);

    /// Any numbers are taken; they are cut to a range in which no edge overflows.
    static QRect areaAt(int row, int column, int rowSpan = 1, int columnSpan = 1);
};

/// The same camera object on the same area.
bool operator==(const LayoutCell &a, const LayoutCell &b);
bool operator!=(const LayoutCell &a, const LayoutCell &b);

} // namespace API
} // namespace ZorvaneClient
