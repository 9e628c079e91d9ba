// SPDX-License-Identifier: MIT
#include "tests/support/Roster.h"

#include <QVariantMap>

#include "API/Camera.h"
#include "API/CloudAPIClient.h"
#include "API/Server.h"

namespace ZorvaneClient {
namespace Tests {

namespace {

QVariantMap cameraJson(const WorldCamera &camera)
{
    QVariantMap json{
        {QStringLiteral("id"), camera.id},
        {QStringLiteral("name"), camera.name},
        {QStringLiteral("online"), camera.online},
        {QStringLiteral("rights"), QStringList{QStringLiteral("live"), QStringLiteral("archive")}}};
    if (camera.paid) {
        const QVariantMap active{{QStringLiteral("active"), true}};
        json.insert(QStringLiteral("services"), QVariantMap{{QStringLiteral("enabled"), active}});
    }
    return json;
}

QVariantMap serverJson(const WorldServer &server)
{
    QVariantMap cameras;
    for (const WorldCamera &camera : server.cameras)
        cameras.insert(QString::number(camera.id), cameraJson(camera));
    const QString buildType =
        server.isCamera ? QStringLiteral("ip-camera") : QStringLiteral("server");
    return {{QStringLiteral("id"), server.id},
            {QStringLiteral("name"), server.alias},
            {QStringLiteral("online"), server.online},
            {QStringLiteral("info"), QVariantMap{{QStringLiteral("build_type"), buildType}}},
            {QStringLiteral("cameras"), cameras}};
}

} // namespace

void setWorld(const QList<WorldServer> &world)
{
    QVariantMap roster;
    for (const WorldServer &server : world)
        roster.insert(server.id, serverJson(server));
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
        server.cameras.append({static_cast<int>(server.cameras.size()) + 1, name, online});
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

} // namespace Tests
} // namespace ZorvaneClient
