// SPDX-License-Identifier: MIT
#pragma once

#include <QMap>
#include <QSharedPointer>
#include <QString>

namespace ZorvaneClient {
namespace API {

class Camera;
class Layout;
class LocalServer;
class Server;

/// Number of a camera, unique within its server only.
using camera_id_t = qint32;
/// A cloud server: opaque text. A LAN server: "host:port".
using server_id_t = QString;

/// A camera anywhere in the roster.
struct camera_global_id_t {
    server_id_t server;
    camera_id_t camera = 0;
};

inline bool operator==(const camera_global_id_t &a, const camera_global_id_t &b)
{
    return a.server == b.server && a.camera == b.camera;
}

inline bool operator!=(const camera_global_id_t &a, const camera_global_id_t &b)
{
    return !(a == b);
}

inline bool operator<(const camera_global_id_t &a, const camera_global_id_t &b)
{
    return a.server != b.server ? a.server < b.server : a.camera < b.camera;
}

// A null handle is legal in every place that takes one.
using CameraPtr = QSharedPointer<Camera>;
using ServerPtr = QSharedPointer<Server>;
using LocalServerPtr = QSharedPointer<LocalServer>;
using LayoutPtr = QSharedPointer<Layout>;

/// Layouts by identifier.
using LayoutsContainer = QMap<QString, LayoutPtr>;

/// Bits of Camera::flags().
enum CameraFlag : int { CameraNotPaid = 2, CameraOffline = 4 };
/// Bits of Camera::rights().
enum CameraRight : int { RightLive = 2, RightArchive = 4, RightPtz = 8 };
/// Values of Camera::kind().
enum CameraKind : int { CloudCamera = 0, LocalCamera = 1 };

/// Bits of Server::flags(), under the name that crosses signals.
using ServerFlags = int;
enum ServerFlag : int { ServerOffline = 8 };

/// A cell of a grid, counted from 0. Ordered by column, then row.
struct LayoutPoint {
    int column = 0;
    int row = 0;
};

inline bool operator<(const LayoutPoint &a, const LayoutPoint &b)
{
    return a.column != b.column ? a.column < b.column : a.row < b.row;
}

inline bool operator==(const LayoutPoint &a, const LayoutPoint &b)
{
    return a.column == b.column && a.row == b.row;
}

/// How many columns and rows a tile spans.
struct CellSize {
    int columns = 1;
    int rows = 1;
};

} // namespace API
} // namespace ZorvaneClient
