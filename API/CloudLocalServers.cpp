// SPDX-License-Identifier: MIT
// The LAN servers of CloudAPIClient, which the user enters and a file in the working directory
// keeps.
#include "API/CloudAPIClient.h"

#include <QDebug>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>

#include "API/CloudData.h"
#include "API/LocalServer.h"
#include "App/OwnerOnly.h"

namespace ZorvaneClient {
namespace API {

using Internal::cloudData;

namespace {

const QString localRosterFile = QStringLiteral("local_roster.txt");
// Far beyond what people enter by hand, and each server has connections and a poll of its own.
constexpr int maximumConnectedServers = 256;

/// Puts `server` into the roster, in the place of what the file has under its id.
void take(const LocalServerPtr &server)
{
    cloudData.localServers.insert(server->id(), server);
    cloudData.unconnectedServers.remove(server->id());
}

} // namespace

void CloudAPIClient::loadLocalRoster()
{
    cloudData.unconnectedServers.clear();
    QFile file(localRosterFile);
    if (!file.open(QIODevice::ReadOnly)) {
        qDebug() << "Local roster file not present";
        cloudData.localServers.clear();
        return;
    }
    const QVariantList entries = QJsonDocument::fromJson(file.readAll()).toVariant().toList();
    for (const QVariant &entry : entries) {
        const QVariantMap json = entry.toMap();
        const server_id_t id = LocalServer::idOf(json); // making one would start its polling
        if (cloudData.localServers.contains(id) || cloudData.unconnectedServers.contains(id))
            continue; // objects in memory win, then who comes first
        if (cloudData.localServers.size() < maximumConnectedServers)
            take(LocalServerPtr::create(json));
        else
            cloudData.unconnectedServers.insert(id, json);
    }
    if (!cloudData.unconnectedServers.isEmpty())
        qWarning() << "Too many local servers, connected:" << cloudData.localServers.size();
}

void CloudAPIClient::saveLocalRoster()
{
    QVariantList entries;
    for (const LocalServerPtr &server : qAsConst(cloudData.localServers))
        entries.append(server->toJson());
    // Behind the others, so that the next run connects the same ones.
    for (const QVariantMap &json : qAsConst(cloudData.unconnectedServers))
        entries.append(json);
    const QByteArray document = QJsonDocument(QJsonArray::fromVariantList(entries)).toJson();
    if (!App::writeForOwner(localRosterFile, document))
        qWarning() << "Cannot save local roster";
}

void CloudAPIClient::addLocalServer(LocalServerPtr server)
{
    if (!server)
        return;
    take(server);
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
        take(server);
    }
    emit rosterUpdated();
    saveLocalRoster();
}

} // namespace API
} // namespace ZorvaneClient
