// SPDX-License-Identifier: MIT
#include "API/LayoutCell.h"

namespace ZorvaneClient {
namespace API {

namespace {

int bounded(int value)
{
    constexpr int limit = 1 << 29;
    return qBound(-limit, value, limit);
}

} // namespace

QRect LayoutCell::areaAt(int row, int column, int rowSpan, int columnSpan)
{
    return QRect(bounded(row), bounded(column), bounded(rowSpan), bounded(columnSpan));
}

bool operator==(const LayoutCell &a, const LayoutCell &b)
{
    return a.camera == b.camera && a.area == b.area;
}

bool operator!=(const LayoutCell &a, const LayoutCell &b)
{
    return !(a == b);
}

} // namespace API
} // namespace ZorvaneClient
