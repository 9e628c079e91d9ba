// SPDX-License-Identifier: MIT
#include "GUI/IconPixmap.h"

#include <QIcon>
#include <QPixmapCache>

namespace ZorvaneClient {
namespace GUI {

namespace {

QPixmap loadedIcon(const QString &path)
{
    // The small form tells the size, whatever the density.
    const QPixmap small(path);
    return small.isNull() ? small : QIcon(path).pixmap(small.size());
}

} // namespace

QPixmap iconPixmap(const QString &path)
{
    QPixmap icon;
    if (path.isEmpty())
        return icon;
    // Thousands of cards share the icons, so that the way by file name is too long.
    const QString key = QStringLiteral("icon ") + path;
    if (!QPixmapCache::find(key, &icon)) {
        icon = loadedIcon(path);
        QPixmapCache::insert(key, icon);
    }
    return icon;
}

} // namespace GUI
} // namespace ZorvaneClient
