// SPDX-License-Identifier: MIT
#include "API/CloudAPIClient.h"

#include <QCoreApplication>
#include <QMutexLocker>
#include <QPointer>
#include <QUrl>

#include "API/CloudData.h"
#include "API/CloudExchange.h"
#include "API/LocalServer.h"
#include "API/RestClient.h"
#include "API/Server.h"

namespace ZorvaneClient {
namespace API {

using Internal::cloudData;
using Internal::OnError;
using Internal::watchExchange;

namespace {

// The word that the service knows this client by.
const QString platform = QStringLiteral("windows");

QDateTime epoch()
{
    return QDateTime::fromMSecsSinceEpoch(0);
}

} // namespace

CloudAPIClient::CloudAPIClient(QObject *parent) : QObject(parent)
{
}

CloudAPIClient::~CloudAPIClient() = default;

QString CloudAPIClient::sessionId()
{
    return cloudData.sessionId;
}

QMap<server_id_t, ServerPtr> CloudAPIClient::serverList()
{
    QMap<server_id_t, ServerPtr> servers = cloudData.servers;
    for (auto local = cloudData.localServers.cbegin(); local != cloudData.localServers.cend();
         ++local)
        servers.insert(local.key(), local.value());
    return servers;
}

LayoutsContainer CloudAPIClient::layoutList()
{
    return cloudData.layouts;
}

void CloudAPIClient::clearRoster()
{
    const QMutexLocker locker(&cloudData.mutex);
    cloudData.servers.clear();
}

void CloudAPIClient::tryLogin(QString email, QString password)
{
    const QPointer<CloudAPIClient> self(this);
    auto *client = new RestClient;
    watchExchange(
        client, OnError::Keep,
        [self](const QVariant &response) {
            cloudData.sessionId = response.toMap().value(QStringLiteral("session_id")).toString();
            if (self)
                emit self->loginSuccess();
        },
        [self](int, int) {
            if (self)
                emit self->loginFailed();
        });

    // Encoded here, since the form body takes values as they stand.
    const QVariantMap params{
        {QStringLiteral("login"), QUrl::toPercentEncoding(email)},
        {QStringLiteral("password"), QUrl::toPercentEncoding(password)},
        {QStringLiteral("clientType"), platform},
        {QStringLiteral("clientVersion"), QCoreApplication::applicationVersion()},
    };
    client->request(QStringLiteral("public/sessions"), params,
                    QNetworkAccessManager::PostOperation);
}

void CloudAPIClient::logout()
{
    {
        const QMutexLocker locker(&cloudData.mutex);
        auto *client = new RestClient;
        watchExchange(
            client, OnError::Keep, [](const QVariant &) {}, [](int, int) {});
        client->del(QStringLiteral("public/sessions/") + cloudData.sessionId, QVariantMap());

        cloudData.sessionId.clear();
        cloudData.layoutsLastUpdate = 0;
        cloudData.lastLayoutsUpdate = epoch();
        cloudData.lastRosterUpdate = epoch();
        cloudData.servers.clear();
        cloudData.localServers.clear();
        cloudData.unconnectedServers.clear();
        cloudData.layouts.clear();
    }
    const QPointer<CloudAPIClient> self(this);
    emit rosterUpdated();
    if (self)
        emit layoutsUpdated();
}

void CloudAPIClient::checkForUpdates()
{
    const QPointer<CloudAPIClient> self(this);
    auto *client = new RestClient;
    watchExchange(
        client, OnError::Keep,
        [self](const QVariant &response) {
            if (self)
                emit self->updatesFound(
                    response.toMap().value(QStringLiteral("version")).toString());
        },
        [self](int, int) {
            if (self)
                emit self->updatesError();
        });
    client->request(QStringLiteral("public/version/client_") + platform, QVariantMap(),
                    QNetworkAccessManager::GetOperation);
}

} // namespace API
} // namespace ZorvaneClient
