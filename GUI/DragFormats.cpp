// SPDX-License-Identifier: MIT
#include "GUI/DragFormats.h"

#include <QDataStream>
#include <QIODevice>
#include <QMimeData>

namespace ZorvaneClient {
namespace GUI {

namespace {

QString nameOf(DragFormat format)
{
    switch (format) {
    case DragFormat::Camera:
        return QStringLiteral("camera");
    case DragFormat::Server:
        return QStringLiteral("server");
    case DragFormat::Layout:
        return QStringLiteral("layout");
    case DragFormat::Tile:
        return QStringLiteral("layout-swap");
    }
    return QString();
}

QMimeData *dataOf(DragFormat format, const QByteArray &bytes)
{
    auto *data = new QMimeData;
    data->setData(nameOf(format), bytes);
    return data;
}

template <typename... Values>
QMimeData *write(DragFormat format, const Values &...values)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    (stream << ... << values);
    return dataOf(format, bytes);
}

/// False if the data ends before all `values` are read.
template <typename... Values>
bool read(const QMimeData &data, DragFormat format, Values &...values)
{
    QDataStream stream(data.data(nameOf(format)));
    (stream >> ... >> values);
    return stream.status() == QDataStream::Ok;
}

} // namespace

bool carries(const QMimeData &data, DragFormat format)
{
    return !data.data(nameOf(format)).isEmpty();
}

QMimeData *cameraDrag(const API::camera_global_id_t &camera)
{
    return write(DragFormat::Camera, camera.server, camera.camera);
}

std::optional<API::camera_global_id_t> draggedCamera(const QMimeData &data)
{
    API::camera_global_id_t camera;
    if (!read(data, DragFormat::Camera, camera.server, camera.camera))
        return std::nullopt;
    return camera;
}

QMimeData *serverDrag(const API::server_id_t &server)
{
    return write(DragFormat::Server, server);
}

std::optional<API::server_id_t> draggedServer(const QMimeData &data)
{
    API::server_id_t server;
    if (!read(data, DragFormat::Server, server))
        return std::nullopt;
    return server;
}

QMimeData *layoutDrag(const QString &name)
{
    return dataOf(DragFormat::Layout, name.toUtf8());
}

std::optional<QString> draggedLayout(const QMimeData &data)
{
    if (!carries(data, DragFormat::Layout))
        return std::nullopt;
    return QString::fromUtf8(data.data(nameOf(DragFormat::Layout)));
}

QMimeData *tileDrag(API::LayoutPoint cell)
{
    return write(DragFormat::Tile, cell.row, cell.column);
}

std::optional<API::LayoutPoint> draggedTile(const QMimeData &data)
{
    API::LayoutPoint cell;
    if (!read(data, DragFormat::Tile, cell.row, cell.column))
        return std::nullopt;
    return cell;
}

} // namespace GUI
} // namespace ZorvaneClient
