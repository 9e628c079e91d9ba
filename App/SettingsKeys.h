// SPDX-License-Identifier: MIT
#pragma once

#include <QString>

namespace ZorvaneClient {
namespace App {

/// Every key of the settings file, with the type of its value where that is no text, and its
/// default where that is not the empty one. Users have files with these names: a key is never
/// renamed.
namespace SettingsKey {

constexpr char language[] = "common/language"; // "ru" or "en"; default: by the system

constexpr char email[] = "auth/email";
constexpr char password[] = "auth/password"; // in clear text
constexpr char saveAuth[] = "auth/saveAuth"; // bool: sign in at the next start

constexpr char useProxy[] = "proxy/useProxy"; // bool
constexpr char proxyHost[] = "proxy/host";
constexpr char proxyPort[] = "proxy/port"; // int
constexpr char proxyUserName[] = "proxy/username";
constexpr char proxyPassword[] = "proxy/password"; // in clear text

constexpr char geometry[] = "mainWindow/geometry";         // bytes of QWidget::saveGeometry()
constexpr char openTab[] = "mainWindow/openTab";           // "Cameras" or "Layouts"
constexpr char namesOnTiles[] = "mainWindow/namesOnTiles"; // bool

constexpr char volume[] = "sound/volume"; // int, default 50
constexpr char soundOn[] = "sound/on";    // bool, default true

constexpr char tourInterval[] = "tour/intervalSeconds"; // int, default 30

/// int: degrees.
inline QString cameraRotation(const QString &serverId, int cameraId)
{
    return QStringLiteral("cameras/%1/%2/rotation").arg(serverId, QString::number(cameraId));
}

} // namespace SettingsKey

} // namespace App
} // namespace ZorvaneClient
