// SPDX-License-Identifier: MIT
#include "API/Server.h"

#include <QDebug>

#include <algorithm>

#include "API/Camera.h"
#include "API/RosterJson.h"
#include "API/ServerPrivate.h"

namespace ZorvaneClient {
namespace API {

Server::Server() : d(QSharedPointer<Internal::ServerPrivate>::create())
{
}

Server::Server(QVariantMap json) : Server()
{
    d->id = json.value(QStringLiteral("id")).toString();
    d->alias = json.value(QStringLiteral("name")).toString();
    d->owner = json.value(QStringLiteral("owner")).toBool();
    d->liveEnabled = json.value(QStringLiteral("live")).toBool();
    d->archiveEnabled = json.value(QStringLiteral("archive")).toBool();
    if (!json.value(QStringLiteral("online")).toBool())
        d->flags |= ServerOffline;
    readFunctions(json.value(QStringLiteral("info")).toMap());

    const QVariantMap cameras = json.value(QStringLiteral("cameras")).toMap();
    for (const QVariant &value : cameras) {
        const QVariantMap map = value.toMap();
        if (!map.isEmpty())
            addCamera(CameraPtr::create(this, map));
    }
}

Server::~Server() = default;

void Server::readFunctions(const QVariantMap &info)
{
    d->speedPlay = Internal::hasFunction(info, QStringLiteral("speed_play"));
    d->arcSearch = Internal::hasFunction(info, QStringLiteral("arc_search"));
    d->isCamera =
        info.value(QStringLiteral("build_type")).toString().endsWith(QLatin1String("camera"));
}

bool Server::isLocal() const
{
    return false;
}

server_id_t Server::id() const
{
    return d->id;
}

QString Server::alias() const
{
    return d->alias;
}

void Server::setAlias(QString alias)
{
    if (alias != d->alias) {
        d->alias = alias;
        emit aliasChanged(alias);
    }
}

ServerFlags Server::flags() const
{
    return d->flags;
}

void Server::setFlags(ServerFlags flags)
{
    if (flags != d->flags) {
        d->flags = flags;
        emit flagsChanged(flags);
    }
}

bool Server::isOnline() const
{
    return !(d->flags & ServerOffline);
}

bool Server::isOwner() const
{
    return d->owner;
}

bool Server::isLiveEnabled() const
{
    return d->liveEnabled;
}

void Server::setLiveEnabled(bool enabled)
{
    if (enabled != d->liveEnabled) {
        d->liveEnabled = enabled;
        emit liveEnabledChanged(enabled);
    }
}

bool Server::isArchiveEnabled() const
{
    return d->archiveEnabled;
}

void Server::setArchiveEnabled(bool enabled)
{
    if (enabled != d->archiveEnabled) {
        d->archiveEnabled = enabled;
        emit archiveEnabledChanged(enabled);
    }
}

bool Server::isSetupEnabled() const
{
    return d->setupEnabled;
}

void Server::setSetupEnabled(bool enabled)
{
    if (enabled != d->setupEnabled) {
        d->setupEnabled = enabled;
        emit setupEnabledChanged(enabled);
    }
}

bool Server::isPublic() const
{
    return d->isPublic;
}

void Server::setPublic(bool isPublic)
{
    if (isPublic != d->isPublic) {
        d->isPublic = isPublic;
        emit isPublicChanged(isPublic);
    }
}

bool Server::isSpeedPlayEnabled() const
{
    return d->speedPlay;
}

bool Server::isArcSearchEnabled() const
{
    return d->arcSearch;
}

bool Server::isCamera() const
{
    return d->isCamera;
}

QMap<camera_id_t, CameraPtr> Server::cameras() const
{
    return d->cameras;
}

bool Server::hasCamera(camera_id_t id) const
{
    return d->cameras.contains(id);
}

QList<CameraPtr> Server::sortedCameras() const
{
    QList<CameraPtr> shown;
    QList<CameraPtr> offline;
    for (const CameraPtr &camera : d->cameras) {
        // Exactly this flag: a camera that isn't paid for either stays among the others.
        (camera->flags() == CameraOffline ? offline : shown).append(camera);
    }
    const auto byName = [](const CameraPtr &a, const CameraPtr &b) {
        return a->name() < b->name();
    };
    std::stable_sort(shown.begin(), shown.end(), byName);
    std::stable_sort(offline.begin(), offline.end(), byName);
    return shown + offline;
}

void Server::addCamera(CameraPtr camera)
{
    d->cameras.insert(camera->id(), camera);
    emit cameraAdded(camera);
}

void Server::removeCamera(camera_id_t id)
{
    if (d->cameras.remove(id) > 0)
        emit cameraRemoved(id);
}

void Server::clearCameras()
{
    d->cameras.clear();
    emit camerasRemoved();
}

void Server::update(QVariantMap json)
{
    const bool online = json.value(QStringLiteral("online")).toBool();
    d->flags = online ? d->flags & ~ServerOffline : d->flags | ServerOffline;
    setAlias(json.value(QStringLiteral("name")).toString());
    setLiveEnabled(json.value(QStringLiteral("live")).toBool());
    setArchiveEnabled(json.value(QStringLiteral("archive")).toBool());
    updateCameras(json.value(QStringLiteral("cameras")).toMap());
}

void Server::updateCameras(const QVariantMap &json)
{
    for (const QVariant &value : json) {
        const QVariantMap map = value.toMap();
        const CameraPtr known = d->cameras.value(map.value(QStringLiteral("id")).toInt());
        if (known)
            known->update(this, map);
        else
            addCamera(CameraPtr::create(this, map));
    }
    const QList<camera_id_t> numbers = d->cameras.keys();
    for (const camera_id_t number : numbers) {
        if (!json.contains(QString::number(number))) {
            qDebug() << "Removed camera" << id() << ":" << number;
            removeCamera(number);
        }
    }
}

void Server::invalidate()
{
    emit invalidated();
}

} // namespace API
} // namespace ZorvaneClient
