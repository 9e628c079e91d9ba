// SPDX-License-Identifier: MIT
#include "API/CameraPrivate.h"

#include <QStandardPaths>
#include <QTransform>

#include <algorithm>

#include "App/SettingsKeys.h"

namespace ZorvaneClient {
namespace API {
namespace Internal {

bool CameraPrivate::hasRight(CameraRight right) const
{
    return kind == LocalCamera || (rights & right);
}

QPixmap CameraPrivate::oriented(const QPixmap &pixmap) const
{
    QTransform transform;
    transform.scale(mirror ? -1.0 : 1.0, 1.0);
    transform.rotate(rotation, Qt::ZAxis);
    return pixmap.transformed(transform, Qt::FastTransformation);
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
