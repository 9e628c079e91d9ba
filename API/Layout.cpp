// SPDX-License-Identifier: MIT
#include "API/Layout.h"

#include <QUuid>

#include <algorithm>
#include <iterator>
#include <limits>

#include "API/Camera.h"
#include "API/CloudAPIClient.h"
#include "API/LayoutDocument.h"
#include "API/Server.h"

namespace ZorvaneClient {
namespace API {

namespace LayoutKey = Internal::LayoutKey;

namespace {

LayoutPoint keyOf(int row, int column)
{
    return {column, row};
}

QVariantMap cellToMap(const LayoutCell &cell)
{
    return {{LayoutKey::server, cell.camera->serverId()},
            {LayoutKey::camera, cell.camera->id()},
            {LayoutKey::row, cell.row()},
            {LayoutKey::column, cell.column()},
            {LayoutKey::rowSpan, cell.rowSpan()},
            {LayoutKey::columnSpan, cell.columnSpan()}};
}

CameraPtr findCamera(const QMap<server_id_t, ServerPtr> &servers, const QVariantMap &cell)
{
    const ServerPtr server = servers.value(cell.value(LayoutKey::server).toString());
    if (!server)
        return CameraPtr();
    return server->cameras().value(cell.value(LayoutKey::camera).toInt());
}

} // namespace

Layout::Layout()
{
    data.name = tr("Untitled Layout");
    data.id = QUuid::createUuid().toString(QUuid::WithoutBraces);
}

Layout::Layout(const Layout &other) : QObject(), data(other.data)
{
}

Layout &Layout::operator=(const Layout &other)
{
    data = other.data;
    return *this;
}

Layout::Layout(QVariantMap map) : Layout()
{
    if (map.contains(LayoutKey::id))
        data.id = map.value(LayoutKey::id).toString();
    update(map);
}

Layout::Layout(QJsonObject object) : Layout(object.toVariantMap())
{
}

QString Layout::name() const
{
    return data.name;
}

void Layout::setName(QString name)
{
    data.name = name;
}

int Layout::rows() const
{
    return data.rows;
}

int Layout::columns() const
{
    return data.columns;
}

QString Layout::id() const
{
    return data.id;
}

QList<LayoutCell> Layout::cellList() const
{
    return data.cells.values();
}

LayoutCell Layout::cellAt(int row, int column) const
{
    return data.cells.value(keyOf(row, column), LayoutCell(CameraPtr(), row, column));
}

bool Layout::isFarOutside(int row, int column) const
{
    return row > data.rows || column > data.columns;
}

void Layout::setCamera(CameraPtr camera, int row, int column, int rowSpan, int columnSpan)
{
    if (isFarOutside(row, column))
        return;
    const LayoutPoint key = keyOf(row, column);
    if (data.cells.contains(key) && data.cells.value(key).camera == camera)
        return;
    clearCell(row, column);
    data.cells.insert(key, LayoutCell(camera, row, column, rowSpan, columnSpan));
    emit updated();
}

void Layout::clearCell(int row, int column)
{
    if (isFarOutside(row, column))
        return;
    if (data.cells.remove(keyOf(row, column)) > 0)
        emit updated();
}

void Layout::swapCells(int row1, int column1, int row2, int column2)
{
    const LayoutPoint first = keyOf(row1, column1);
    const LayoutPoint second = keyOf(row2, column2);
    const LayoutCell a = cellAt(row1, column1);
    const LayoutCell b = cellAt(row2, column2);
    if (data.cells.contains(second))
        data.cells.insert(first, LayoutCell(b.camera, row1, column1));
    else
        data.cells.remove(first);
    data.cells.insert(second, LayoutCell(a.camera, row2, column2));
}

void Layout::resize(int rows, int columns)
{
    const bool shrinks = rows < data.rows || columns < data.columns;
    for (auto it = data.cells.begin(); shrinks && it != data.cells.end();) {
        const bool inside = it->row() < rows && it->column() < columns;
        it = inside ? std::next(it) : data.cells.erase(it);
    }
    data.rows = rows;
    data.columns = columns;
    emit updated();
}

int Layout::freeCellCount() const
{
    qint64 count = qint64(data.rows) * data.columns;
    for (const LayoutCell &cell : data.cells)
        count -= cell.camera ? 1 : 0;
    using Limits = std::numeric_limits<int>;
    return static_cast<int>(std::clamp<qint64>(count, Limits::min(), Limits::max()));
}

QVariantMap Layout::toVariantMap() const
{
    QVariantList cameras;
    for (const LayoutCell &cell : data.cells) {
        if (cell.camera)
            cameras.append(cellToMap(cell));
    }
    return {{LayoutKey::name, data.name},
            {LayoutKey::rows, data.rows},
            {LayoutKey::columns, data.columns},
            {LayoutKey::id, data.id},
            {LayoutKey::cells, cameras}};
}

void Layout::update(QVariantMap map)
{
    data.name = map.value(LayoutKey::name).toString();
    data.rows = map.value(LayoutKey::rows).toInt();
    data.columns = map.value(LayoutKey::columns).toInt();

    const QMap<server_id_t, ServerPtr> servers = CloudAPIClient::serverList();
    const QVariantList cells = map.value(LayoutKey::cells).toList();
    for (const QVariant &value : cells) {
        const QVariantMap cell = value.toMap();
        const CameraPtr camera = findCamera(servers, cell);
        if (!camera)
            continue;
        const int row = cell.value(LayoutKey::row).toInt();
        const int column = cell.value(LayoutKey::column).toInt();
        const int rowSpan = cell.value(LayoutKey::rowSpan).toInt();
        const int columnSpan = cell.value(LayoutKey::columnSpan).toInt();
        data.cells.insert(keyOf(row, column), LayoutCell(camera, row, column, rowSpan, columnSpan));
    }
}

bool Layout::operator==(const Layout &other) const
{
    return data.id == other.data.id && data.name == other.data.name &&
           data.columns == other.data.columns && data.rows == other.data.rows &&
           cellList() == other.cellList();
}

bool Layout::operator!=(const Layout &other) const
{
    return !(*this == other);
}

} // namespace API
} // namespace ZorvaneClient
