// SPDX-License-Identifier: MIT
#pragma once

#include "API/Types.h"

QT_BEGIN_NAMESPACE
class QDropEvent;
class QMimeData;
class QWidget;
QT_END_NAMESPACE

namespace ZorvaneClient {
namespace GUI {
namespace Player {

// What the cells of a grid, filled or empty, understand of a drag.

/// True for a camera or a tile. What is being moved must come from a sibling of `target`.
bool acceptsDrag(const QDropEvent &event, const QWidget &target);

/// The camera of format "camera"; null if the roster doesn't hold it or the data is damaged.
API::CameraPtr droppedCamera(const QMimeData &data);

/// The cell of format "layout-swap". False, with `cell` unchanged, if the data is damaged.
bool readDroppedCell(const QMimeData &data, API::LayoutPoint &cell);

/// The format "layout-swap" for the tile at `cell`. The caller owns the result.
QMimeData *tileMimeData(API::LayoutPoint cell);

} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
