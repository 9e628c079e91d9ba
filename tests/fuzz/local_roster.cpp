// SPDX-License-Identifier: MIT
#include "API/CloudData.h"
#include "API/LocalServer.h"
#include "tests/fuzz/Roster.h"

using namespace ZorvaneClient::API;

/// The file's servers are the same after a save and another start. Nobody is called: as many are
/// connected as may be, so those of the file only wait for the next save.
void tryInput(const QByteArray &input)
{
    static const auto connected = LocalServerPtr::create("", "127.0.0.1", 1, "");
    for (int i = 0; i < 256; ++i)
        Internal::cloudData.localServers.insert(QString::number(i), connected);
    writeFile("local_roster.txt", input);
    CloudAPIClient client;
    client.loadLocalRoster();
    QMap<server_id_t, QVariantMap> servers = Internal::cloudData.unconnectedServers;
    servers.insert(connected->id(), connected->toJson());
    client.saveLocalRoster();
    client.loadLocalRoster();
    check(Internal::cloudData.unconnectedServers == servers);
}
