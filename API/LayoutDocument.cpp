// SPDX-License-Identifier: MIT
#include "API/LayoutDocument.h"

#include <QCryptographicHash>
#include <QDebug>
#include <QStandardPaths>

#include "API/Layout.h"

namespace ZorvaneClient {
namespace API {
namespace Internal {

namespace {

// Each of these returns true when it had to change something. A missing key stays missing.

bool boundNumber(QVariantMap &map, const QString &key)
{
    const int number = map.value(key).toInt();
    const int bounded = qBound(0, number, LayoutBounds::gridSide);
    if (bounded == number)
        return false;
    map.insert(key, bounded);
    return true;
}

bool boundName(QVariantMap &layout)
{
    const QString name = layout.value(LayoutKey::name).toString();
    if (name.size() <= LayoutBounds::nameLength)
        return false;
    layout.insert(LayoutKey::name, name.left(LayoutBounds::nameLength));
    return true;
}

bool isInsideGrid(const QVariantMap &cell)
{
    const int row = cell.value(LayoutKey::row).toInt();
    const int column = cell.value(LayoutKey::column).toInt();
    return row >= 0 && row < LayoutBounds::gridSide && column >= 0 &&
           column < LayoutBounds::gridSide;
}

bool boundCells(QVariantMap &layout)
{
    bool cut = false;
    QVariantList cells;
    const QVariantList given = layout.value(LayoutKey::cells).toList();
    for (const QVariant &entry : given) {
        QVariantMap cell = entry.toMap();
        if (!isInsideGrid(cell)) {
            cut = true;
            continue;
        }
        cut |= boundNumber(cell, LayoutKey::rowSpan);
        cut |= boundNumber(cell, LayoutKey::columnSpan);
        cells.append(cell);
    }
    if (cut)
        layout.insert(LayoutKey::cells, cells);
    return cut;
}

bool boundLayout(QVariantMap &layout)
{
    bool cut = boundNumber(layout, LayoutKey::rows);
    cut |= boundNumber(layout, LayoutKey::columns);
    cut |= boundName(layout);
    cut |= boundCells(layout);
    return cut;
}

} // namespace

QList<QVariantMap> boundedLayouts(const QVariantList &layouts)
{
    if (layouts.size() > LayoutBounds::layouts)
        qWarning() << "Too many layouts:" << layouts.size() << "taken:" << LayoutBounds::layouts;
    QList<QVariantMap> result;
    int cutCount = 0;
    for (const QVariant &entry : layouts.mid(0, LayoutBounds::layouts)) {
        QVariantMap layout = entry.toMap();
        if (boundLayout(layout))
            ++cutCount;
        result.append(layout);
    }
    if (cutCount > 0)
        qWarning() << "Layouts beyond all bounds, cut:" << cutCount;
    return result;
}

QVariantList toVariantList(const LayoutsContainer &layouts)
{
    QVariantList list;
    for (const LayoutPtr &layout : layouts)
        list.append(layout->toVariantMap());
    return list;
}

QString layoutsCacheFile(const QString &email)
{
    const QByteArray account =
        QCryptographicHash::hash(email.toLower().toUtf8(), QCryptographicHash::Md5).toHex();
    return QStandardPaths::writableLocation(QStandardPaths::CacheLocation) +
           QStringLiteral("/layouts.") + QString::fromLatin1(account);
}

} // namespace Internal
} // namespace API
} // namespace ZorvaneClient
