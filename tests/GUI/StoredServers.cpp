// SPDX-License-Identifier: MIT
#include "tests/GUI/StoredServers.h"

#include "tests/support/Test.h"

#include "API/CloudAPIClient.h"
#include "API/LocalServer.h"

namespace ZorvaneClient::Tests {

QVariantList storedServers()
{
    QFile file(rosterFile);
    if (!file.open(QIODevice::ReadOnly))
        return QVariantList();
    return QJsonDocument::fromJson(file.readAll()).toVariant().toList();
}

void forgetServers()
{
    const QMap<API::server_id_t, API::ServerPtr> servers = API::CloudAPIClient::serverList();
    for (const API::ServerPtr &server : servers)
        API::CloudAPIClient().deleteLocalServer(server.dynamicCast<API::LocalServer>());
    QFile::remove(rosterFile);
}

} // namespace ZorvaneClient::Tests
