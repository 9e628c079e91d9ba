// SPDX-License-Identifier: MIT
#include "API/LocalServer.h"

#include <QSet>
#include <QSize>
#include <QUrl>

#include <chrono>

#include "API/Camera.h"
#include "API/Endpoint.h"
#include "API/RosterJson.h"
#include "API/ServerPrivate.h"
#include "API/StreamerClient.h"

namespace ZorvaneClient {
namespace API {

namespace {

constexpr std::chrono::milliseconds pollInterval{5000};

constexpr int minimumWidth = 80;
constexpr int maximumWidth = 2400;
constexpr int minimumHeight = 60;
constexpr int maximumHeight = 2000;
constexpr QSize fallbackSize{640, 480};

// An entry of the local roster file.
const QString hostKey = QStringLiteral("ip");
const QString portKey = QStringLiteral("port");
const QString nameKey = QStringLiteral("name");
const QString passwordKey = QStringLiteral("password");

server_id_t addressOf(const QString &host, int port)
{
    return host + QLatin1Char(':') + QString::number(port);
}

bool isWithin(int value, int minimum, int maximum)
{
    return value >= minimum && value <= maximum;
}

/// Of an entry of `streams/info`.
QSize checkedVideoSize(const QVariantMap &entry)
{
    const int width = entry.value(QStringLiteral("width")).toInt();
    const int height = entry.value(QStringLiteral("height")).toInt();
    const bool plausible = isWithin(width, minimumWidth, maximumWidth) &&
                           isWithin(height, minimumHeight, maximumHeight);
    return plausible ? QSize(width, height) : fallbackSize;
}

} // namespace

LocalServer::LocalServer(QString alias, QString host, int port, QString password)
    : serverHost(host), serverPort(port), serverPassword(password)
{
    d->alias = alias;
    d->flags = ServerOffline;

    infoClient = new StreamerClient(host, port);
    connect(infoClient, &StreamerClient::responseReceived, this, &LocalServer::infoUpdate);
    connect(infoClient, &StreamerClient::error, this, &LocalServer::infoError);
    streamsClient = new StreamerClient(host, port);
    connect(streamsClient, &StreamerClient::responseReceived, this, &LocalServer::streamsUpdate);
    connect(streamsClient, &StreamerClient::error, this, &LocalServer::streamsError);

    connect(&timer, &QTimer::timeout, this, &LocalServer::update);
    update();
    timer.start(pollInterval);
}

LocalServer::LocalServer(QVariantMap json)
    : LocalServer(json.value(nameKey).toString(), json.value(hostKey).toString(),
                  json.value(portKey).toInt(), json.value(passwordKey).toString())
{
}

LocalServer::~LocalServer()
{
    // The last handle can be let go while one of them tells what came.
    infoClient->deleteLater();
    streamsClient->deleteLater();
}

bool LocalServer::isLocal() const
{
    return true;
}

server_id_t LocalServer::id() const
{
    return addressOf(serverHost, serverPort);
}

QString LocalServer::host() const
{
    return serverHost;
}

int LocalServer::port() const
{
    return serverPort;
}

QString LocalServer::password() const
{
    return serverPassword;
}

void LocalServer::setHost(QString host)
{
    if (host == serverHost)
        return;
    serverHost = host;
    readdressClients();
}

void LocalServer::setPort(int port)
{
    if (port == serverPort)
        return;
    serverPort = port;
    readdressClients();
}

void LocalServer::readdressClients()
{
    infoClient->setAddress(serverHost, serverPort);
    streamsClient->setAddress(serverHost, serverPort);
}

void LocalServer::setPassword(QString password)
{
    serverPassword = password;
}

QVariantMap LocalServer::toJson() const
{
    return {{hostKey, serverHost},
            {portKey, serverPort},
            {nameKey, alias()},
            {passwordKey, serverPassword}};
}

server_id_t LocalServer::idOf(const QVariantMap &json)
{
    return addressOf(json.value(hostKey).toString(), json.value(portKey).toInt());
}

void LocalServer::update()
{
    QVariantMap params;
    // Encoded in these two requests only; those of the cameras take it as it stands.
    params.insert(QStringLiteral("sessionId"), QUrl::toPercentEncoding(serverPassword));
    params.insert(QStringLiteral("server"), Internal::localServerNumber);
    if (!infoPending) {
        infoPending = true;
        infoClient->request(QStringLiteral("vs_info/"), params, true);
    }
    if (!streamsPending) {
        streamsPending = true;
        streamsClient->request(QStringLiteral("streams/info"), params, true);
    }
}

void LocalServer::infoUpdate(QVariant data)
{
    infoPending = false;
    d->flags &= ~ServerOffline;
    d->arcSearch = Internal::hasFunction(data.toMap(), QStringLiteral("arc_search"));
    emit updated();
}

void LocalServer::infoError()
{
    infoPending = false;
    d->flags = ServerOffline;
    emit updated();
}

void LocalServer::streamsUpdate(QVariant data)
{
    streamsPending = false;
    d->flags = 0;
    const QVariantList entries = data.toList();
    if (entries.isEmpty()) {
        clearCameras();
        return;
    }

    QSet<camera_id_t> seen;
    for (const QVariant &value : entries) {
        const QVariantMap entry = value.toMap();
        bool hasNumber = false;
        const camera_id_t number = entry.value(QStringLiteral("id")).toInt(&hasNumber);
        if (hasNumber) {
            seen.insert(number);
            updateCamera(number, entry);
        }
    }
    const QList<camera_id_t> numbers = d->cameras.keys();
    for (const camera_id_t number : numbers) {
        if (!seen.contains(number))
            removeCamera(number);
    }
    emit updated();
}

void LocalServer::updateCamera(camera_id_t number, const QVariantMap &entry)
{
    CameraPtr camera = d->cameras.value(number);
    if (!camera) {
        camera = CameraPtr::create();
        camera->setId(id(), number);
        camera->setKind(LocalCamera);
        camera->setSessionId(serverPassword);
        addCamera(camera);
    }
    camera->setName(entry.value(QStringLiteral("name")).toString());
    camera->setExportEnabled(true);
    camera->setVideoSize(checkedVideoSize(entry));
    camera->setVcodec(entry.value(QStringLiteral("vcodec")).toString());
    const bool online = entry.value(QStringLiteral("status")).toInt() != 0;
    camera->setFlags(online ? 0 : CameraOffline);
}

void LocalServer::streamsError()
{
    streamsPending = false;
    clearCameras();
    emit updated();
}

} // namespace API
} // namespace ZorvaneClient
