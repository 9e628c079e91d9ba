// SPDX-License-Identifier: MIT
// The layouts of CloudAPIClient: memory, the account's cache file and the service, ordered by
// one stamp; the newest copy wins as a whole.
#include "API/CloudAPIClient.h"

#include <QDebug>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMutexLocker>
#include <QPointer>
#include <QSet>

#include "API/CloudData.h"
#include "API/CloudExchange.h"
#include "API/Layout.h"
#include "API/LayoutDocument.h"
#include "API/LayoutVersions.h"
#include "API/RestClient.h"
#include "App/Environment.h"
#include "App/OwnerOnly.h"
#include "App/Settings.h"
#include "App/SettingsKeys.h"

namespace ZorvaneClient {
namespace API {

using Internal::cloudData;
using Internal::LayoutBounds;
using Internal::OnError;
using Internal::watchExchange;

namespace {

QString cacheFile()
{
    return Internal::layoutsCacheFile(App::settings().value(App::SettingsKey::email).toString());
}

void takeLayout(const QString &id, const QVariantMap &json)
{
    const LayoutPtr known = cloudData.layouts.value(id);
    if (known)
        known->update(json);
    else
        cloudData.layouts.insert(id, LayoutPtr::create(json));
}

void removeLayoutsExcept(const QSet<QString> &seen)
{
    const QList<QString> ids = cloudData.layouts.keys();
    for (const QString &id : ids) {
        if (!seen.contains(id))
            cloudData.layouts.remove(id);
    }
}

} // namespace

void CloudAPIClient::updateLayouts()
{
    if (cloudData.servers.isEmpty())
        return; // the cells refer to cameras
    readLayoutsCache();

    const QMutexLocker locker(&cloudData.mutex);
    if (Internal::isFresh(cloudData.lastLayoutsUpdate)) {
        emit layoutsUpdated();
        return;
    }
    cloudData.lastLayoutsUpdate = App::Environment::now();
    const QPointer<CloudAPIClient> self(this);
    auto *client = new RestClient;
    watchExchange(
        client, OnError::Release,
        [self](const QVariant &response) {
            if (self)
                self->onLayoutsReceived(response);
        },
        [self](int, int) {
            qDebug() << "Error updating layouts";
            if (self)
                emit self->layoutsUpdateError();
        });
    client->request(QStringLiteral("/layouts"),
                    {{QStringLiteral("sessionId"), cloudData.sessionId}},
                    QNetworkAccessManager::GetOperation);
}

void CloudAPIClient::readLayoutsCache()
{
    QFile file(cacheFile());
    if (!file.open(QIODevice::ReadOnly))
        return;
    if (file.size() > LayoutBounds::documentBytes) {
        qWarning() << "Layouts cache is too large:" << file.fileName();
        return;
    }
    if (parseLayouts(QJsonDocument::fromJson(file.readAll()).toVariant()))
        emit layoutsUpdated();
}

void CloudAPIClient::onLayoutsReceived(const QVariant &response)
{
    if (!parseLayouts(response)) {
        saveLayoutsToAPI(); // what is here is at least as new
        return;
    }
    const QPointer<CloudAPIClient> self(this);
    emit layoutsUpdated();
    if (self)
        saveLayoutsToFile();
}

bool CloudAPIClient::parseLayouts(QVariant layoutsResponse)
{
    const QVariantMap map = layoutsResponse.toMap();
    const int lastUpdate = map.value(Internal::LayoutKey::lastUpdate).toInt();
    if (lastUpdate <= cloudData.layoutsLastUpdate) {
        qDebug() << "Outdated layouts:" << lastUpdate;
        return false;
    }
    cloudData.layoutsLastUpdate = lastUpdate;

    QSet<QString> seen;
    const QList<QVariantMap> layouts =
        Internal::boundedLayouts(map.value(Internal::LayoutKey::list).toList());
    for (const QVariantMap &layout : layouts) {
        const QString id = layout.value(Internal::LayoutKey::id).toString();
        seen.insert(id);
        takeLayout(id, layout);
    }
    removeLayoutsExcept(seen);
    return true;
}

void CloudAPIClient::addLayout(LayoutPtr layout)
{
    if (!layout)
        return;
    cloudData.layouts.insert(layout->id(), layout);
    emit layoutsUpdated();
}

void CloudAPIClient::deleteLayout(LayoutPtr layout)
{
    if (!layout)
        return;
    cloudData.layouts.remove(layout->id());
    emit layoutsUpdated();
}

void CloudAPIClient::saveLayoutsToAPI()
{
    const QPointer<CloudAPIClient> self(this);
    auto *client = new RestClient;
    watchExchange(
        client, OnError::Release, [](const QVariant &) { qDebug() << "Layouts saved to API"; },
        [self](int, int) {
            qWarning() << "Error saving layouts";
            if (self)
                emit self->layoutsUpdateError();
        });
    const QVariantList layouts = Internal::toVariantList(cloudData.layouts);
    client->postJSON(QStringLiteral("/layouts"),
                     {{QStringLiteral("sessionId"), cloudData.sessionId}},
                     QJsonDocument(QJsonArray::fromVariantList(layouts)).toJson());
}

void CloudAPIClient::saveLayoutsToFile()
{
    cloudData.layoutsLastUpdate = static_cast<int>(App::Environment::now().toSecsSinceEpoch());
    const QVariantList layouts = Internal::toVariantList(cloudData.layouts);
    const QJsonObject document{
        {Internal::LayoutKey::lastUpdate, cloudData.layoutsLastUpdate},
        {Internal::LayoutKey::list, QJsonArray::fromVariantList(layouts)},
    };
    const QString fileName = cacheFile();
    const QByteArray content = QJsonDocument(document).toJson();
    Internal::keepLayoutVersion(fileName, content);
    if (!App::writeForOwner(fileName, content))
        qWarning() << "Could not save layouts cache to" << fileName;
}

} // namespace API
} // namespace ZorvaneClient
