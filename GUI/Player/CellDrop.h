// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include "API/Types.h"

class QDropEvent;
class QWidget;

namespace ZorvaneClient {
namespace GUI {
namespace Player {

/// What was let go over a cell of the grid, filled or empty: a camera, a tile, or nothing that
/// the cell could use.
struct CellDrop {
    /// Null also if the roster doesn't hold it.
    API::CameraPtr camera;
    /// The cell of a tile that was moved here.
    std::optional<API::LayoutPoint> tile;
};

/// True for a camera or a tile. What is being moved must come from a sibling of `target`.
bool acceptsDrag(const QDropEvent &event, const QWidget &target);

/// A camera is copied and a tile is moved; a drop of either kind is accepted, also if nothing
/// comes of it.
CellDrop takeDrop(QDropEvent *event);

} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
