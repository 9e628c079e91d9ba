// SPDX-License-Identifier: MIT
#pragma once

#include "API/Types.h"
#include "tests/support/Test.h"

namespace ZorvaneClient::Tests {

struct WorldCamera {
    int id = 1;
    QString name;
    bool online = true;
    bool paid = true;
};

struct WorldServer {
    QString id;
    QString alias;
    QList<WorldCamera> cameras;
    bool online = true;
    bool isCamera = false;
};

/// Makes `world` the cloud servers of the process-wide roster, as a reply of the service does.
void setWorld(const QList<WorldServer> &world);

/// Puts one cloud server with these cameras, numbered from 1, beside those that this function
/// has put there before. The cameras are offline unless `online`, so that a tile starts no
/// child for them.
API::ServerPtr addServerToRoster(const QString &id, const QStringList &cameraNames,
                                 bool online = false);
API::ServerPtr worldServer(const QString &id);
API::CameraPtr rosterCamera(const QString &server, int camera);

} // namespace ZorvaneClient::Tests
