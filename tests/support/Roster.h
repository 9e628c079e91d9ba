// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QStringList>

#include "API/Types.h"

namespace ZorvaneClient {
namespace Tests {

/// Puts one cloud server with these cameras, numbered from 1, into the process-wide roster,
/// as a reply of the service would. The cameras are offline unless `online`, so that a tile
/// starts no child for them.
API::ServerPtr addServerToRoster(const QString &id, const QStringList &cameraNames,
                                 bool online = false);
API::CameraPtr rosterCamera(const QString &server, int camera);
/// Empties the roster again.
void clearRoster();

} // namespace Tests
} // namespace ZorvaneClient
