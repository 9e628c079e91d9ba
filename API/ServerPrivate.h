// SPDX-License-Identifier: MIT
#pragma once

#include <QMap>
#include <QString>
#include <QVariant>

#include <algorithm>

#include "API/Types.h"

namespace ZorvaneClient {
namespace API {
namespace Internal {

/// True when `word` is among the functions that a server says it has.
inline bool hasFunction(const QVariantMap &info, const QString &word)
{
    const QVariantList list = info.value(QStringLiteral("functions")).toList();
    return std::any_of(list.begin(), list.end(),
                       [&word](const QVariant &entry) { return entry.toString() == word; });
}

/// State of a Server.
class ServerPrivate
{
public:
    ServerFlags flags = 0;
    server_id_t id;
    QString alias;
    bool owner = false;
    bool liveEnabled = false;
    bool archiveEnabled = false;
    bool setupEnabled = false;
    bool isPublic = false;
    QMap<camera_id_t, CameraPtr> cameras;
    bool speedPlay = false;
    bool arcSearch = false;
    bool isCamera = false;
};

} // namespace Internal
} // namespace API
} // namespace ZorvaneClient
