// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QVariant>

#include "API/Types.h"

namespace ZorvaneClient {
namespace API {
namespace Internal {

/// Keys of the document as the service and the cache file keep it, of a layout and of its cells.
namespace LayoutKey {

inline const QString lastUpdate = QStringLiteral("last_update");
inline const QString list = QStringLiteral("layouts");

inline const QString name = QStringLiteral("name");
inline const QString rows = QStringLiteral("rows");
inline const QString columns = QStringLiteral("columns");
inline const QString id = QStringLiteral("id");
inline const QString cells = QStringLiteral("cameras");

inline const QString server = QStringLiteral("server");
inline const QString camera = QStringLiteral("camera");
inline const QString row = QStringLiteral("row");
inline const QString column = QStringLiteral("column");
inline const QString rowSpan = QStringLiteral("w");
inline const QString columnSpan = QStringLiteral("h");

} // namespace LayoutKey

/// Bounds on layouts that come from outside: far beyond what people make, small enough that
/// no document can stop the program.
struct LayoutBounds {
    static constexpr qint64 documentBytes = 16LL * 1024 * 1024;
    static constexpr int layouts = 1000;
    static constexpr int gridSide = 32; ///< rows, columns and spans
    static constexpr int nameLength = 1000;
};

/// The layouts of a document, each cut to LayoutBounds; a warning in the log says so.
QList<QVariantMap> boundedLayouts(const QVariantList &layouts);

/// The layouts as they are saved, in the container's order.
QVariantList toVariantList(const LayoutsContainer &layouts);

/// Cache file of the account with this address; letter case doesn't matter.
QString layoutsCacheFile(const QString &email);

} // namespace Internal
} // namespace API
} // namespace ZorvaneClient
