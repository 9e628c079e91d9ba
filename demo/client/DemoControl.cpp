// SPDX-License-Identifier: MIT
#include "demo/client/DemoControl.h"

#include <QEventLoop>
#include <QJsonArray>
#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QTimer>

#include <algorithm>
#include <chrono>

#include "demo/ServiceWords.h"
#include "service/Loopback.h"

namespace ZorvaneDemo {

namespace {

constexpr auto deadline = std::chrono::seconds(20);

} // namespace

QJsonObject DemoControl::control(const QByteArray &method, const QString &path,
                                 const QJsonObject &body)
{
    QNetworkAccessManager manager;
    manager.setProxy(QNetworkProxy::NoProxy);
    const QString address = QString::fromStdString(loopbackAddress(controlPort()));
    QNetworkRequest request(QUrl(QLatin1String("http://") + address + path));
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    QNetworkReply *reply = manager.sendCustomRequest(
        request, method, body.isEmpty() ? QByteArray() : QJsonDocument(body).toJson());
    QEventLoop loop;
    connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    QTimer::singleShot(deadline, &loop, &QEventLoop::quit);
    loop.exec();
    if (!reply->isFinished() || reply->error() != QNetworkReply::NoError) {
        error = QStringLiteral("%1: %2 %3")
                    .arg(path, reply->errorString(), QString::fromUtf8(reply->readAll()));
        return QJsonObject();
    }
    return QJsonDocument::fromJson(reply->readAll()).object();
}

QVector<DemoCamera> DemoControl::cameras()
{
    QVector<DemoCamera> result;
    const QJsonArray servers = control("GET", QStringLiteral("/world"), QJsonObject())
                                   .value(QLatin1String("servers"))
                                   .toArray();
    for (const QJsonValue server : servers) {
        const QJsonArray list = server.toObject().value(QLatin1String("cameras")).toArray();
        for (const QJsonValue camera : list)
            result << DemoCamera::from(server.toObject(), camera.toObject());
    }
    return result;
}

bool DemoControl::post(const char *path, const QJsonObject &body)
{
    return !control("POST", QLatin1String(path), body).isEmpty();
}

DemoCamera DemoControl::camera(int number)
{
    const QVector<DemoCamera> all = cameras();
    const auto found = std::find_if(all.begin(), all.end(), [number](const DemoCamera &camera) {
        return camera.number == number;
    });
    return found == all.end() ? DemoCamera() : *found;
}

bool DemoControl::setCameraOnline(const QString &server, int camera, bool online)
{
    return setCamera(server, camera, {{QStringLiteral("online"), online}});
}

bool DemoControl::setServerOnline(const QString &server, bool online)
{
    return setServer(server, {{QStringLiteral("online"), online}});
}

bool DemoControl::setCamera(const QString &server, int camera, const QJsonObject &values)
{
    QJsonObject body = values;
    body.insert(QStringLiteral("server"), server);
    body.insert(QStringLiteral("camera"), camera);
    return post("/cameras/set", body);
}

bool DemoControl::setArchive(const DemoCamera &camera,
                             const QVector<QPair<qint64, qint64>> &records)
{
    QJsonArray list;
    for (const auto &[start, end] : records)
        list.append(QJsonArray{start, end});
    return post("/cameras/archive", {{QStringLiteral("server"), camera.server},
                                     {QStringLiteral("camera"), camera.camera},
                                     {QStringLiteral("records"), list}});
}

bool DemoControl::setServer(const QString &server, const QJsonObject &values)
{
    QJsonObject body = values;
    body.insert(QStringLiteral("server"), server);
    return post("/servers/set", body);
}

QString DemoControl::addServer(const QString &name, int cameras)
{
    return control("POST", QStringLiteral("/servers/add"),
                   {{QStringLiteral("name"), name}, {QStringLiteral("cameras"), cameras}})
        .value(QLatin1String("server"))
        .toString();
}

bool DemoControl::dropSessions()
{
    return post("/sessions/drop", QJsonObject());
}

int DemoControl::addFault(const DemoFault &fault)
{
    return control("POST", QStringLiteral("/faults/add"), fault.toJson())
        .value(QLatin1String("fault"))
        .toInt();
}

bool DemoControl::clearFaults()
{
    return post("/faults/clear", QJsonObject());
}

QVector<DemoRequest> DemoControl::requests(const QString &path)
{
    QVector<DemoRequest> result;
    const QJsonArray list = control("GET", QStringLiteral("/requests?path=") + path, QJsonObject())
                                .value(QLatin1String("requests"))
                                .toArray();
    for (const QJsonValue request : list)
        result << DemoRequest::from(request.toObject());
    return result;
}

int DemoControl::requestCount(const QString &path)
{
    return control("GET", QStringLiteral("/requests?path=") + path, QJsonObject())
        .value(QLatin1String("count"))
        .toInt();
}

int DemoControl::openStreams()
{
    return control("GET", QStringLiteral("/streams"), QJsonObject())
        .value(QLatin1String("open"))
        .toInt(-1);
}

bool DemoControl::reset()
{
    return post("/reset", QJsonObject());
}

} // namespace ZorvaneDemo
