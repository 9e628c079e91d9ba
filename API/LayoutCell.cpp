// SPDX-License-Identifier: MIT
#include "API/LayoutCell.h"

namespace ZorvaneClient {
namespace API {

namespace {

// An edge is the sum of a place and a span and must fit an int.
constexpr int farthestNumber = 1 << 29;

int bounded(int value)
{
    return qBound(-farthestNumber, value, farthestNumber);
}

} // namespace

LayoutCell::LayoutCell(CameraPtr cellCamera, int row, int column, int rowSpan, int columnSpan)
    : camera(cellCamera), area(bounded(row), bounded(column), bounded(rowSpan), bounded(columnSpan))
{
}

} // namespace API
} // namespace ZorvaneClient
