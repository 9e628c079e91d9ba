// SPDX-License-Identifier: MIT
#include "API/Camera.h"

#include "API/CameraPrivate.h"
#include "API/RosterJson.h"
#include "API/Server.h"
#include "App/Settings.h"

namespace ZorvaneClient {
namespace API {

Camera::Camera() : d(QSharedPointer<Internal::CameraPrivate>::create())
{
}

Camera::Camera(Server *server, QVariantMap json) : Camera()
{
    d->serverId = server->id();
    d->id = json.value(QStringLiteral("id")).toInt();
    d->vcodec = json.value(QStringLiteral("vcodec")).toString();
    d->videoSize = QSize(json.value(QStringLiteral("width")).toInt(),
                         json.value(QStringLiteral("height")).toInt());
    d->rotation = json.value(QStringLiteral("rotation")).toInt();
    d->mirror = json.value(QStringLiteral("mirror")).toBool();
    d->speedPlay = server->isSpeedPlayEnabled();
    d->exportEnabled = server->isLocal();
    update(server, json);
    if (server->isLocal())
        d->rotation = App::settings().value(d->rotationKey(), 0).toInt();
}

Camera::~Camera()
{
    for (const QMetaObject::Connection &connection : d->connections)
        disconnect(connection);
}

void Camera::update(Server *server, QVariantMap json)
{
    d->name = json.value(QStringLiteral("name")).toString();
    d->fullName = server->alias() + QLatin1Char('-') + d->name;

    const Internal::PaidState state =
        Internal::paidStateOf(json.value(QStringLiteral("services")).toMap());
    d->activeService = state.activeService;
    const bool online = json.value(QStringLiteral("online")).toBool();
    d->arcSearch = server->isArcSearchEnabled();
    setFlags((online ? 0 : CameraOffline) | (state.paid ? 0 : CameraNotPaid));

    const int rights = Internal::rightsOf(json.value(QStringLiteral("rights")).toList());
    if (rights != d->rights) {
        d->rights = rights;
        emit rightsChanged();
    }
}

camera_id_t Camera::id() const
{
    return d->id;
}

server_id_t Camera::serverId() const
{
    return d->serverId;
}

camera_global_id_t Camera::globalId() const
{
    return {d->serverId, d->id};
}

QString Camera::name() const
{
    return d->name;
}

QString Camera::fullName() const
{
    return d->fullName;
}

int Camera::kind() const
{
    return d->kind;
}

int Camera::flags() const
{
    return d->flags;
}

int Camera::rights() const
{
    return d->rights;
}

QString Camera::vcodec() const
{
    return d->vcodec;
}

QSize Camera::videoSize() const
{
    return d->videoSize;
}

bool Camera::isPaid() const
{
    return !(d->flags & CameraNotPaid);
}

bool Camera::isOnline() const
{
    return !(d->flags & CameraOffline);
}

bool Camera::isLiveShared() const
{
    return d->hasRight(RightLive);
}

bool Camera::isArchiveShared() const
{
    return d->hasRight(RightArchive);
}

bool Camera::isExportEnabled() const
{
    return d->exportEnabled;
}

QString Camera::stateText() const
{
    QString text;
    if (!isPaid())
        text += tr("not paid for");
    if (!isOnline())
        text += (text.isEmpty() ? QString() : tr(" and ")) + tr("offline");
    return text;
}

QString Camera::statusText() const
{
    const QString state = stateText();
    return state.isEmpty() ? QString() : tr("Camera ") + d->name + tr(" is ") + state;
}

QString Camera::host() const
{
    return d->lanEndpoint().host;
}

int Camera::port() const
{
    return d->lanEndpoint().port;
}

QString Camera::liveUrl(int quality) const
{
    return d->streamAddress().live(quality);
}

QString Camera::archiveUrl(int quality, int speed, qint64 start, qint64 end) const
{
    Q_UNUSED(end)
    return d->streamAddress().archive(quality, speed, start);
}

QString Camera::exportUrl(qint64 start, qint64 end) const
{
    return d->kind == LocalCamera ? d->streamAddress().exported(start, end) : QString();
}

bool Camera::hasRecords(QDate date) const
{
    return !d->records.value(date).isEmpty();
}

QList<ArchiveRecord> Camera::records(QDate date) const
{
    return d->records.value(date);
}

QMap<QDate, int> Camera::calendar() const
{
    return d->calendar;
}

bool Camera::operator==(const Camera &other) const
{
    return d->serverId == other.d->serverId && d->id == other.d->id && d->name == other.d->name;
}

void Camera::setId(server_id_t server, camera_id_t id)
{
    d->serverId = server;
    d->id = id;
}

void Camera::setName(QString name)
{
    d->name = name;
}

void Camera::setKind(int kind)
{
    d->kind = kind;
}

void Camera::setSessionId(QString sessionId)
{
    d->sessionId = sessionId;
}

void Camera::setVideoSize(QSize size)
{
    d->videoSize = size;
}

void Camera::setVcodec(QString vcodec)
{
    d->vcodec = vcodec;
}

void Camera::setExportEnabled(bool enabled)
{
    d->exportEnabled = enabled;
}

void Camera::setFlags(int flags)
{
    if (flags != d->flags) {
        d->flags = flags;
        emit flagsChanged();
    }
}

} // namespace API
} // namespace ZorvaneClient
