// SPDX-License-Identifier: MIT
#include "tests/fuzz/Roster.h"
#include "API/Camera.h"
#include "API/LocalServer.h"

using namespace ZorvaneClient::API;

/// A reply of the service, or of a LAN server on its own cameras, taken twice gives the same.
void tryInput(const QByteArray &input)
{
    static LocalServer lan("", "127.0.0.1", 1, "");
    const QVariant reply = jsonOf(input);
    QMetaObject::invokeMethod(&lan, "streamsUpdate", Q_ARG(QVariant, reply));

    takeUsualRoster();
    takeRoster(reply);
    const QMap<server_id_t, ServerPtr> servers = CloudAPIClient::serverList();
    takeRoster(reply);
    check(CloudAPIClient::serverList() == servers);
    for (const ServerPtr &server : servers) {
        for (const CameraPtr &camera : server->sortedCameras())
            check(camera->serverId() == server->id() && server->hasCamera(camera->id()));
    }
}
