// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include "API/Types.h"

class QMimeData;

namespace ZorvaneClient {
namespace GUI {

// All that can be dragged within the program. Each format has a pair of functions: one makes
// the data, which the caller owns, the other reads what that one made, and nothing if the data
// is of another format or damaged.

enum class DragFormat { Camera, Server, Layout, Tile };

/// True if `data` brings anything in that format, be it damaged or not.
bool carries(const QMimeData &data, DragFormat format);

QMimeData *cameraDrag(const API::camera_global_id_t &camera);
std::optional<API::camera_global_id_t> draggedCamera(const QMimeData &data);

QMimeData *serverDrag(const API::server_id_t &server);
std::optional<API::server_id_t> draggedServer(const QMimeData &data);

/// A layout goes by its name; one without a name carries nothing.
QMimeData *layoutDrag(const QString &name);
std::optional<QString> draggedLayout(const QMimeData &data);

/// A tile goes by the cell of its grid.
QMimeData *tileDrag(API::LayoutPoint cell);
std::optional<API::LayoutPoint> draggedTile(const QMimeData &data);

} // namespace GUI
} // namespace ZorvaneClient
