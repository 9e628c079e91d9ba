// SPDX-License-Identifier: MIT
#include "tests/support/Roster.h"

#include "API/Camera.h"
#include "API/CloudAPIClient.h"
#include "API/Server.h"

namespace ZorvaneClient::Tests {

void setWorld(const QList<WorldServer> &world)
{
    QVariantMap roster;
    for (const WorldServer &server : world) {
        QVariantMap cameras;
        for (const WorldCamera &camera : server.cameras) {
            QVariantMap json{{"id", camera.id},
                             {"name", camera.name},
                             {"online", camera.online},
                             {"rights", QStringList{"live", "archive"}}};
            if (camera.paid)
                json["services"] = QVariantMap{{"enabled", QVariantMap{{"active", true}}}};
            cameras.insert(QString::number(camera.id), json);
        }
        const QString buildType = server.isCamera ? "ip-camera" : "server";
        roster[server.id] = QVariantMap{{"id", server.id},
                                        {"name", server.alias},
                                        {"online", server.online},
                                        {"info", QVariantMap{{"build_type", buildType}}},
                                        {"cameras", cameras}};
    }
    API::CloudAPIClient client;
    QMetaObject::invokeMethod(&client, "onNewRosterReceived", Qt::DirectConnection,
                              Q_ARG(QVariant, QVariant(roster)));
}

API::ServerPtr addServerToRoster(const QString &id, const QStringList &cameraNames, bool online)
{
    // A reply is the whole roster, so what was added before comes along.
    static QList<WorldServer> added;
    WorldServer server{id, id, {}};
    for (const QString &name : cameraNames)
        server.cameras.append({int(server.cameras.size()) + 1, name, online});
    added.append(server);
    setWorld(added);
    return worldServer(id);
}

API::ServerPtr worldServer(const QString &id)
{
    return API::CloudAPIClient::serverList().value(id);
}

API::CameraPtr rosterCamera(const QString &server, int camera)
{
    const API::ServerPtr owner = worldServer(server);
    return owner ? owner->cameras().value(camera) : API::CameraPtr();
}

} // namespace ZorvaneClient::Tests
