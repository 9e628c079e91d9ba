// SPDX-License-Identifier: MIT
#include "API/Camera.h"

#include <QStringList>

#include "API/CameraPrivate.h"
#include "API/CloudAPIClient.h"
#include "API/Server.h"
#include "App/OwnerOnly.h"
#include "App/ServiceProfile.h"
#include "App/Settings.h"

namespace ZorvaneClient {
namespace API {

namespace {

constexpr int exportQuality = 2;
/// What a LAN server calls itself in a stream address.
constexpr int localServerNumber = 1;

struct PaidState {
    bool paid = false;
    QString activeService;
};

PaidState paidState(const QVariantMap &services)
{
    if (services.isEmpty()) {
        return {};
    }
    const QVariantMap enabled = services.value(QStringLiteral("enabled")).toMap();
    if (enabled.isEmpty()) {
        return {false, QStringLiteral("camera")};
    }
    const QVariant active = enabled.value(QStringLiteral("active"));
    const QString text = active.toString();
    // The key also carries names of services, which convert to true but don't mean paid.
    const bool paid = active.toBool() && (text.isEmpty() || text == QLatin1String("true"));
    return {paid, text};
}

int rightsOf(const QVariantList &words)
{
    int rights = 0;
    for (const QVariant &entry : words) {
        const QString word = entry.toString();
        if (word == QLatin1String("live")) {
            rights |= RightLive;
        } else if (word == QLatin1String("archive")) {
            rights |= RightArchive;
        } else if (word == QLatin1String("ptz")) {
            rights |= RightPtz;
        }
    }
    return rights;
}

/// The values that every stream address begins with.
struct StreamAddress {
    explicit StreamAddress(const Internal::CameraPrivate &d) : camera(QString::number(d.id))
    {
        if (d.kind == LocalCamera) {
            host = d.serverId;
            server = QString::number(localServerNumber);
            session = d.sessionId;
        } else {
            host = App::ServiceProfile::current().flvHost;
            server = d.serverId;
            session = CloudAPIClient::sessionId();
        }
    }

    QString host;
    QString server;
    QString camera;
    QString session;
};

/// The two sides of "host:port", or nothing.
QStringList addressParts(const server_id_t &serverId)
{
    const QStringList parts = serverId.split(QLatin1Char(':'));
    return parts.size() == 2 ? parts : QStringList();
}

} // namespace

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
    d->arcSearch = server->isArcSearchEnabled();
    d->exportEnabled = server->isLocal();
    d->kind = CloudCamera;
    update(server, json);
    if (server->isLocal()) {
        d->rotation = App::settings().value(d->rotationKey(), 0).toInt();
    }
}

Camera::~Camera()
{
    for (const QMetaObject::Connection &connection : d->connections) {
        disconnect(connection);
    }
}

void Camera::update(Server *server, QVariantMap json)
{
    d->name = json.value(QStringLiteral("name")).toString();
    d->fullName = server->alias() + QLatin1Char('-') + d->name;

    const PaidState state = paidState(json.value(QStringLiteral("services")).toMap());
    d->activeService = state.activeService;
    const bool online = json.value(QStringLiteral("online")).toBool();
    d->arcSearch = server->isArcSearchEnabled();
    setFlags((online ? 0 : CameraOffline) | (state.paid ? 0 : CameraNotPaid));

    const int rights = rightsOf(json.value(QStringLiteral("rights")).toList());
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

int Camera::rotation() const
{
    return d->rotation;
}

void Camera::setRotation(int angle)
{
    d->rotation = angle;
    showOrientation();

    if (d->kind == LocalCamera) {
        App::settings().setValue(d->rotationKey(), angle);
        return;
    }
    auto *client = new CloudAPIClient;
    connect(client, &CloudAPIClient::ok, client, &QObject::deleteLater);
    connect(client, &CloudAPIClient::error, client, &QObject::deleteLater);
    client->setCameraRotation(globalId(), angle);
}

bool Camera::isMirrored() const
{
    return d->mirror;
}

void Camera::setMirrored(bool mirror)
{
    d->mirror = mirror;
    showOrientation();
}

void Camera::showOrientation()
{
    d->preview = d->oriented(d->rawPreview);
    emit previewChanged(d->preview);
    emit orientationChanged();
}

QString Camera::stateText() const
{
    QString text;
    if (!isPaid()) {
        text += tr("not paid for");
    }
    if (!isOnline()) {
        text += (text.isEmpty() ? QString() : tr(" and ")) + tr("offline");
    }
    return text;
}

QString Camera::statusText() const
{
    const QString state = stateText();
    return state.isEmpty() ? QString() : tr("Camera ") + d->name + tr(" is ") + state;
}

QString Camera::host() const
{
    return addressParts(d->serverId).value(0);
}

int Camera::port() const
{
    return addressParts(d->serverId).value(1).toInt();
}

// The markers of an address are filled in one pass, so that a value that looks like a marker
// itself, say in a password, goes in as it is.

QString Camera::liveUrl(int quality) const
{
    const StreamAddress address(*d);
    return QStringLiteral("http://%1/flv/live?server=%2&camera=%3&q=%4&sessionId=%5"
                          "&vcodec=h264&vcodec=flv&vcodec=mpeg4&acodec=mp3")
        .arg(address.host, address.server, address.camera, QString::number(quality),
             address.session);
}

QString Camera::archiveUrl(int quality, int speed, qint64 start, qint64 end) const
{
    Q_UNUSED(end)
    const StreamAddress address(*d);
    return QStringLiteral("http://%1/flv/archive?server=%2&camera=%3&q=%4&sessionId=%5"
                          "&startTime=%6&speed=%7"
                          "&vcodec=h264&vcodec=flv&vcodec=mpeg4&acodec=mp3")
        .arg(address.host, address.server, address.camera, QString::number(quality),
             address.session, QString::number(start), QString::number(speed));
}

QString Camera::exportUrl(qint64 start, qint64 end) const
{
    if (d->kind != LocalCamera) {
        return QString();
    }
    const StreamAddress address(*d);
    return QStringLiteral("http://%1/flv/archive?server=%2&camera=%3&q=%4&sessionId=%5"
                          "&startTime=%6&endTime=%7&uploadRate=500"
                          "&vcodec=flv&vcodec=h264&vcodec=mpeg4&acodec=mp3")
        .arg(address.host, address.server, address.camera, QString::number(exportQuality),
             address.session, QString::number(start), QString::number(end));
}

bool Camera::hasPreview() const
{
    return !d->preview.isNull();
}

QPixmap Camera::preview()
{
    if (d->preview.isNull()) {
        d->preview = d->oriented(sourcePreview());
    }
    return d->preview;
}

QPixmap Camera::sourcePreview()
{
    if (d->rawPreview.isNull()) {
        d->rawPreview.load(d->previewFile());
    }
    return d->rawPreview;
}

void Camera::setPreview(QPixmap pixmap)
{
    d->rawPreview = pixmap;
    if (!pixmap.isNull()) {
        const QString file = d->previewFile();
        const App::OwnerOnlyFiles guard; // what cameras see is nobody else's business
        App::restrictToOwner(file);
        pixmap.save(file);
    }
    d->preview = d->oriented(d->rawPreview);
    emit previewChanged(d->preview);
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
