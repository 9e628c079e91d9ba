// SPDX-License-Identifier: MIT
// The roster of CloudAPIClient as the service lists it.
#include "API/CloudAPIClient.h"

#include <QDebug>
#include <QMutexLocker>
#include <QPointer>
#include <QSet>

#include "API/CloudData.h"
#include "API/CloudExchange.h"
#include "API/RestClient.h"
#include "API/Server.h"
#include "App/Environment.h"

namespace ZorvaneClient {
namespace API {

using Internal::cloudData;
using Internal::OnError;
using Internal::watchExchange;

namespace {

void takeServer(const server_id_t &id, const QVariantMap &json)
{
    const ServerPtr known = cloudData.servers.value(id);
    if (known) {
        known->update(json);
        return;
    }
    qDebug() << "Roster: New server" << id;
    cloudData.servers.insert(id, ServerPtr::create(json));
}

void removeServersExcept(const QSet<server_id_t> &seen)
{
    const QList<server_id_t> ids = cloudData.servers.keys();
    for (const server_id_t &id : ids) {
        if (seen.contains(id))
            continue;
        qDebug() << "Roster: Removing server" << id;
        cloudData.servers.remove(id);
    }
}

} // namespace

void CloudAPIClient::updateRoster()
{
    bool fresh = false;
    {
        const QMutexLocker locker(&cloudData.mutex);
        fresh = !cloudData.servers.isEmpty() && Internal::isFresh(cloudData.lastRosterUpdate);
        if (!fresh) {
            loadLocalRoster();
            requestRoster();
        }
    }
    if (fresh) {
        qDebug() << "Roster: Shortcut";
        emit rosterUpdated();
    }
}

void CloudAPIClient::requestRoster()
{
    qDebug() << "Requesting roster";
    cloudData.lastRosterUpdate = App::Environment::now();
    const QPointer<CloudAPIClient> self(this);
    auto *client = new RestClient;
    watchExchange(
        client, OnError::Keep,
        [self](const QVariant &response) {
            if (self)
                self->onNewRosterReceived(response);
        },
        [self](int, int) {
            if (self)
                emit self->rosterUpdateError();
        });
    client->request(QStringLiteral("public/roster"),
                    {{QStringLiteral("sessionId"), cloudData.sessionId}},
                    QNetworkAccessManager::GetOperation);
}

void CloudAPIClient::onNewRosterReceived(QVariant roster)
{
    qDebug() << "Roster updated";
    {
        const QMutexLocker locker(&cloudData.mutex);
        QSet<server_id_t> seen;
        const QVariantMap entries = roster.toMap();
        for (const QVariant &entry : entries) {
            const QVariantMap server = entry.toMap();
            if (server.isEmpty())
                continue;
            const server_id_t id = server.value(QStringLiteral("id")).toString();
            seen.insert(id);
            takeServer(id, server);
        }
        removeServersExcept(seen);
    }
    emit rosterUpdated();
}

} // namespace API
} // namespace ZorvaneClient
