// SPDX-License-Identifier: MIT
#pragma once

#include "demo/scenes/Paint.h"

namespace ZorvaneDemo {

/// A room that runs away from the viewer to one vanishing point.
struct Tunnel {
    Point vanishing;
    double halfWidth; ///< of the nearest opening
    double above;     ///< height of the opening above the vanishing point
    double below;

    /// The corner on `side` (-1 or 1) at `depth`, 0 near to 1 at the vanishing point.
    Point floor(double side, double depth) const
    {
        return {vanishing.x + side * halfWidth * (1 - depth), vanishing.y + below * (1 - depth)};
    }
    Point ceiling(double side, double depth) const
    {
        return {vanishing.x + side * halfWidth * (1 - depth), vanishing.y - above * (1 - depth)};
    }
};

} // namespace ZorvaneDemo
