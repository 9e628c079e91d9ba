// SPDX-License-Identifier: MIT
// The roster of CloudAPIClient: what the service lists, and the LAN servers of the user's file.
#include "API/CloudAPIClient.h"

#include <QDebug>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QMutexLocker>
#include <QPointer>
#include <QSet>

#include "API/CloudData.h"
#include "API/CloudExchange.h"
#include "API/LocalServer.h"
#include "API/PrivateFile.h"
#include "API/RestClient.h"
#include "API/Server.h"
#include "App/Environment.h"

namespace ZorvaneClient {
namespace API {

using Internal::cloudData;
using Internal::OnError;
using Internal::watchExchange;

namespace {

const QString localRosterFile = QStringLiteral("local_roster.txt");
// Far beyond what people enter by hand, and each server has connections and a poll of its own.
constexpr qint64 maximumLocalRosterBytes = 1LL << 20;
constexpr int maximumLocalServers = 256;

// The id that a LocalServer made of `json` will have; making one starts its polling.
server_id_t localServerId(const QVariantMap &json)
{
    return json.value(QStringLiteral("ip")).toString() + QLatin1Char(':') +
           QString::number(json.value(QStringLiteral("port")).toInt());
}

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
    // Releases the client even when this handle is gone by the time of the reply.
    watchExchange(
        client, OnError::Keep, [](const QVariant &) {},
        [self](int, int) {
            if (self)
                emit self->rosterUpdateError();
        });
    connect(client, &RestClient::responseReceived, this, &CloudAPIClient::onNewRosterReceived);
    client->request(QStringLiteral("public/roster"),
                    {{QStringLiteral("sessionId"), cloudData.sessionId}},
                    QNetworkAccessManager::GetOperation);
}

void CloudAPIClient::onNewRosterReceived(QVariant roster)
{
    qDebug() << "Roster updated";
    QObject *client = sender();
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
    if (client)
        client->deleteLater();
    emit rosterUpdated();
}

void CloudAPIClient::loadLocalRoster()
{
    QFile file(localRosterFile);
    if (!file.open(QIODevice::ReadOnly)) {
        qDebug() << "Local roster file not present";
        cloudData.localServers.clear();
        return;
    }
    if (file.size() > maximumLocalRosterBytes) {
        qWarning() << "Local roster is too large:" << file.size();
        return;
    }
    const QVariantList entries = QJsonDocument::fromJson(file.readAll()).toVariant().toList();
    for (const QVariant &entry : entries) {
        const QVariantMap json = entry.toMap();
        if (cloudData.localServers.contains(localServerId(json)))
            continue; // objects in memory win
        if (cloudData.localServers.size() >= maximumLocalServers) {
            qWarning() << "Too many local servers, taken:" << maximumLocalServers;
            return;
        }
        const auto server = LocalServerPtr::create(json);
        cloudData.localServers.insert(server->id(), server);
    }
}

void CloudAPIClient::saveLocalRoster()
{
    QVariantList entries;
    for (const LocalServerPtr &server : qAsConst(cloudData.localServers))
        entries.append(server->toJson());
    const QByteArray document = QJsonDocument(QJsonArray::fromVariantList(entries)).toJson();
    if (!Internal::writePrivateFile(localRosterFile, document))
        qWarning() << "Cannot save local roster";
}

void CloudAPIClient::addLocalServer(LocalServerPtr server)
{
    if (!server)
        return;
    cloudData.localServers.insert(server->id(), server);
    emit rosterUpdated();
    saveLocalRoster();
}

void CloudAPIClient::deleteLocalServer(LocalServerPtr server)
{
    if (!server)
        return;
    cloudData.localServers.remove(server->id());
    emit rosterUpdated();
    saveLocalRoster();
}

void CloudAPIClient::editLocalServer(LocalServerPtr server, QString alias, QString host, int port,
                                     QString password)
{
    if (!server)
        return;
    const server_id_t oldId = server->id();
    server->setAlias(alias);
    server->setHost(host);
    server->setPort(port);
    server->setPassword(password);
    if (server->id() != oldId) {
        cloudData.localServers.remove(oldId);
        cloudData.localServers.insert(server->id(), server);
    }
    emit rosterUpdated();
    saveLocalRoster();
}

} // namespace API
} // namespace ZorvaneClient
