// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace ZorvaneClient {
namespace App {

/// Every key of the settings file, with the type of its value and the default where that is
/// not the empty one. Users have files with these names: a key is never renamed.
namespace SettingsKey {

constexpr QLatin1String language("common/language"); ///< "ru" or "en"; absent: by the system

constexpr QLatin1String email("auth/email");
constexpr QLatin1String password("auth/password"); ///< in clear text
constexpr QLatin1String saveAuth("auth/saveAuth"); ///< bool: sign in at the next start

constexpr QLatin1String useProxy("proxy/useProxy"); ///< bool
constexpr QLatin1String proxyHost("proxy/host");
constexpr QLatin1String proxyPort("proxy/port"); ///< int
constexpr QLatin1String proxyUserName("proxy/username");
constexpr QLatin1String proxyPassword("proxy/password"); ///< in clear text

constexpr QLatin1String geometry("mainWindow/geometry"); ///< of QWidget::saveGeometry()
constexpr QLatin1String openTab("mainWindow/openTab");   ///< "Cameras" or "Layouts"

constexpr QLatin1String volume("sound/volume"); ///< int, 50
constexpr QLatin1String soundOn("sound/on");    ///< bool, true

/// int: degrees.
inline QString cameraRotation(const QString &serverId, int cameraId)
{
    return QStringLiteral("cameras/%1/%2/rotation").arg(serverId, QString::number(cameraId));
}

} // namespace SettingsKey

} // namespace App
} // namespace ZorvaneClient
