// SPDX-License-Identifier: MIT
#include "API/CloudData.h"
#include "API/LocalServer.h"
#include "tests/fuzz/Roster.h"

using namespace ZorvaneClient::API;

/// The servers of the file, as a new start of the program has them. Nobody is called: as many are
/// connected as may be, so those of the file only wait for the next save.
static QMap<server_id_t, QVariantMap> serversOfStart()
{
    static const auto connected = LocalServerPtr::create("", "127.0.0.1", 1, "");
    for (int i = 0; i < 256; ++i)
        Internal::cloudData.localServers.insert(QString::number(i), connected);
    CloudAPIClient().loadLocalRoster();
    Internal::cloudData.localServers.clear();
    return Internal::cloudData.unconnectedServers;
}

/// What is read, saved and read again is the same.
void tryInput(const QByteArray &input)
{
    writeFile("local_roster.txt", input);
    const QMap<server_id_t, QVariantMap> servers = serversOfStart();
    CloudAPIClient().saveLocalRoster();
    check(serversOfStart() == servers);
}
