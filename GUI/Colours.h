// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>

namespace ZorvaneClient {
namespace GUI {

/// The program's colours that code paints with; the style sheets have the same.
namespace Colours {

constexpr int opaque = 255;

/// What is chosen, marked or busy.
constexpr QColor accent(int alpha = opaque)
{
    return QColor(62, 183, 253, alpha);
}

/// Panels, and the gaps of the grid.
constexpr QColor panel(int alpha = opaque)
{
    return QColor(41, 44, 49, alpha);
}

/// Lines and empty cells on a panel.
constexpr QColor faint(int alpha = opaque)
{
    return QColor(52, 55, 60, alpha);
}

/// Where a picture would be.
constexpr QColor tile()
{
    return QColor(25, 25, 29);
}

} // namespace Colours

} // namespace GUI
} // namespace ZorvaneClient
