// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QMap>
#include <QMutex>
#include <QString>

#include "API/Types.h"

namespace ZorvaneClient {
namespace API {
namespace Internal {

/// What the service told this process, shared by all handles of CloudAPIClient.
struct CloudData {
    /// Guards the roster, the layouts and their time stamps. Not recursive.
    QMutex mutex;
    QDateTime lastLayoutsUpdate; ///< when layouts were last asked of the service
    int layoutsLastUpdate = 0;   ///< stamp of the newest layouts known, seconds since the epoch
    LayoutsContainer layouts;
    QDateTime lastRosterUpdate; ///< when the roster was last asked of the service
    QMap<QString, LocalServerPtr> localServers;
    QMap<server_id_t, ServerPtr> servers;
    QString sessionId;
};

/// The one record of the process.
extern CloudData cloudData;

/// True when `lastRequest` is less than 30 seconds ago.
bool isFresh(const QDateTime &lastRequest);

} // namespace Internal
} // namespace API
} // namespace ZorvaneClient
