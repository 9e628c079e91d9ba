// SPDX-License-Identifier: MIT
#pragma once

#include <QMap>
#include <QString>

#include "API/Types.h"

namespace ZorvaneClient {
namespace API {
namespace Internal {

/// State of a Server.
class ServerPrivate
{
public:
    ServerFlags flags = 0;
    server_id_t id;
    QString alias;
    bool owner = false;
    bool liveEnabled = false;
    bool archiveEnabled = false;
    bool setupEnabled = false;
    bool isPublic = false;
    QMap<camera_id_t, CameraPtr> cameras;
    bool speedPlay = false;
    bool arcSearch = false;
    bool isCamera = false;
};

} // namespace Internal
} // namespace API
} // namespace ZorvaneClient
