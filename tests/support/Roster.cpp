// SPDX-License-Identifier: MIT
#include "tests/support/Roster.h"

#include <QVariantMap>

#include "API/Camera.h"
#include "API/CloudAPIClient.h"
#include "API/Server.h"

namespace ZorvaneClient {
namespace Tests {

namespace {

// The reply handler takes the whole roster, so what was added before comes along.
QVariantMap &wholeRoster()
{
    static QVariantMap roster;
    return roster;
}

void deliverRoster()
{
    API::CloudAPIClient client;
    QMetaObject::invokeMethod(&client, "onNewRosterReceived", Qt::DirectConnection,
                              Q_ARG(QVariant, QVariant(wholeRoster())));
}

} // namespace

API::ServerPtr addServerToRoster(const QString &id, const QStringList &cameraNames, bool online)
{
    QVariantMap cameras;
    for (int index = 0; index < cameraNames.size(); ++index) {
        const QVariantMap active{{QStringLiteral("active"), true}};
        cameras.insert(
            QString::number(index + 1),
            QVariantMap{
                {QStringLiteral("id"), index + 1},
                {QStringLiteral("name"), cameraNames.at(index)},
                {QStringLiteral("online"), online},
                {QStringLiteral("services"), QVariantMap{{QStringLiteral("enabled"), active}}},
                {QStringLiteral("rights"),
                 QStringList{QStringLiteral("live"), QStringLiteral("archive")}}});
    }
    wholeRoster().insert(id, QVariantMap{{QStringLiteral("id"), id},
                                         {QStringLiteral("name"), id},
                                         {QStringLiteral("online"), true},
                                         {QStringLiteral("cameras"), cameras}});
    deliverRoster();
    return API::CloudAPIClient::serverList().value(id);
}

API::CameraPtr rosterCamera(const QString &server, int camera)
{
    const API::ServerPtr owner = API::CloudAPIClient::serverList().value(server);
    return owner ? owner->cameras().value(camera) : API::CameraPtr();
}

void clearRoster()
{
    wholeRoster().clear();
    deliverRoster();
}

} // namespace Tests
} // namespace ZorvaneClient
