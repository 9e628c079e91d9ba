// SPDX-License-Identifier: MIT
#pragma once

#include <QDateTime>
#include <QMap>
#include <QMutex>
#include <QString>
#include <QVariantMap>

#include "API/Types.h"

namespace ZorvaneClient {
namespace API {
namespace Internal {

/// What the service told this process, shared by all handles of CloudAPIClient.
struct CloudData {
    /// Held while a roster or layouts are asked for, while the cloud servers change and at
    /// sign-out, and for no more than that: getters, and changes of layouts and LAN servers,
    /// take no lock, since all of it runs on the GUI thread. Not recursive: what a signal calls
    /// while it is held must do none of these.
    QMutex mutex;
    QDateTime lastLayoutsUpdate; ///< when layouts were last asked of the service
    int layoutsLastUpdate = 0;   ///< stamp of the newest layouts known, seconds since the epoch
    LayoutsContainer layouts;
    QDateTime lastRosterUpdate; ///< when the roster was last asked of the service
    QMap<QString, LocalServerPtr> localServers;
    /// Entries of the local roster file beyond those that are connected, for the next save.
    QMap<server_id_t, QVariantMap> unconnectedServers;
    QMap<server_id_t, ServerPtr> servers;
    QString sessionId;
};

/// The one record of the process.
extern CloudData cloudData;

/// True when `lastRequest` is less than 30 seconds ago, and not in the future.
bool isFresh(const QDateTime &lastRequest);

} // namespace Internal
} // namespace API
} // namespace ZorvaneClient
