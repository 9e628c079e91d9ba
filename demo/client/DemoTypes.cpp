// SPDX-License-Identifier: MIT
#include "demo/client/DemoTypes.h"

#include <QJsonArray>

namespace ZorvaneDemo {

DemoCamera DemoCamera::from(const QJsonObject &server, const QJsonObject &camera)
{
    const QJsonArray rights = camera.value(QLatin1String("rights")).toArray();
    DemoCamera result;
    result.server = server.value(QLatin1String("id")).toString();
    result.serverName = server.value(QLatin1String("name")).toString();
    result.lan = server.value(QLatin1String("lan")).toBool();
    result.camera = camera.value(QLatin1String("id")).toInt();
    result.number = camera.value(QLatin1String("number")).toInt();
    result.name = camera.value(QLatin1String("name")).toString();
    result.online = camera.value(QLatin1String("online")).toBool();
    result.paid = camera.value(QLatin1String("paid")).toBool();
    result.live = rights.contains(QStringLiteral("live"));
    result.archive = rights.contains(QStringLiteral("archive"));
    return result;
}

DemoRequest DemoRequest::from(const QJsonObject &json)
{
    DemoRequest request;
    request.method = json.value(QLatin1String("method")).toString();
    request.path = json.value(QLatin1String("path")).toString();
    request.query = json.value(QLatin1String("query")).toString();
    request.body = json.value(QLatin1String("body")).toString().toUtf8();
    return request;
}

QJsonObject DemoFault::toJson() const
{
    return {{QStringLiteral("kind"), kind},         {QStringLiteral("route"), route},
            {QStringLiteral("listener"), listener}, {QStringLiteral("server"), server},
            {QStringLiteral("camera"), camera},     {QStringLiteral("times"), times},
            {QStringLiteral("value"), value},       {QStringLiteral("after"), after},
            {QStringLiteral("location"), location}};
}

} // namespace ZorvaneDemo
