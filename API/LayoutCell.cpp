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

LayoutCell::LayoutCell(CameraPtr cellCamera, int row, int column, int rowSpan, int columnSpan)
    : camera(cellCamera), area(bounded(row), bounded(column), bounded(rowSpan), bounded(columnSpan))
{
}

} // namespace API
} // namespace ZorvaneClient
