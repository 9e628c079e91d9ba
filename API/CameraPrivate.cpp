// SPDX-License-Identifier: MIT
#include "API/CameraPrivate.h"

#include <QStandardPaths>
#include <QStringList>

#include <algorithm>

#include "API/CloudAPIClient.h"
#include "API/PreviewImage.h"
#include "App/ServiceProfile.h"
#include "App/SettingsKeys.h"

namespace ZorvaneClient {
namespace API {
namespace Internal {

bool CameraPrivate::hasRight(CameraRight right) const
{
    return kind == LocalCamera || (rights & right);
}

Endpoint CameraPrivate::lanEndpoint() const
{
    const QStringList parts = serverId.split(QLatin1Char(':'));
    return parts.size() == 2 ? Endpoint{parts.first(), parts.last().toInt(), sessionId}
                             : Endpoint();
}

Endpoint CameraPrivate::endpoint() const
{
    return kind == LocalCamera ? lanEndpoint() : Endpoint();
}

StreamAddress CameraPrivate::streamAddress() const
{
    const QString number = QString::number(id);
    if (kind == LocalCamera)
        return {serverId, localServerNumber, number, sessionId};
    return {App::ServiceProfile::current().flvHost, serverId, number, CloudAPIClient::sessionId()};
}

QPixmap CameraPrivate::oriented(const QPixmap &pixmap) const
{
    return orientedPreview(pixmap, rotation, mirror);
}

QString CameraPrivate::previewFile() const
{
    QString server = serverId;
    // An identifier is text from outside and must not lead out of the cache folder.
    server.replace(QLatin1Char('/'), QLatin1Char('_'));
    return QStandardPaths::writableLocation(QStandardPaths::CacheLocation) + QLatin1Char('/') +
           QStringLiteral("%1_%2.jpeg").arg(server, QString::number(id));
}

QString CameraPrivate::rotationKey() const
{
    return App::SettingsKey::cameraRotation(serverId, id);
}

void CameraPrivate::keep(const QMetaObject::Connection &connection)
{
    const auto isGone = [](const QMetaObject::Connection &kept) { return !kept; };
    connections.erase(std::remove_if(connections.begin(), connections.end(), isGone),
                      connections.end());
    connections.append(connection);
}

} // namespace Internal
} // namespace API
} // namespace ZorvaneClient
