// SPDX-License-Identifier: MIT
#include "GUI/Player/DropDecoder.h"

#include <QDataStream>
#include <QDropEvent>
#include <QMimeData>
#include <QWidget>

#include "API/Camera.h"
#include "API/CloudAPIClient.h"
#include "API/Server.h"

namespace ZorvaneClient {
namespace GUI {
namespace Player {

namespace {

const QString cameraFormat = QStringLiteral("camera");
const QString swapFormat = QStringLiteral("layout-swap");

bool readCameraId(const QMimeData &data, API::camera_global_id_t &id)
{
    QDataStream stream(data.data(cameraFormat));
    stream >> id.server >> id.camera;
    return stream.status() == QDataStream::Ok;
}

} // namespace

bool acceptsDrag(const QDropEvent &event, const QWidget &target)
{
    const QMimeData &data = *event.mimeData();
    if (data.data(cameraFormat).isEmpty() && data.data(swapFormat).isEmpty())
        return false;
    if (event.proposedAction() != Qt::MoveAction)
        return true;
    const QObject *source = event.source();
    return source && source->parent() == target.parent();
}

API::CameraPtr droppedCamera(const QMimeData &data)
{
    API::camera_global_id_t id;
    if (!readCameraId(data, id))
        return API::CameraPtr();
    const API::ServerPtr server = API::CloudAPIClient::serverList().value(id.server);
    return server ? server->cameras().value(id.camera) : API::CameraPtr();
}

bool readDroppedCell(const QMimeData &data, API::LayoutPoint &cell)
{
    QDataStream stream(data.data(swapFormat));
    int row = 0;
    int column = 0;
    stream >> row >> column;
    if (stream.status() != QDataStream::Ok)
        return false;
    cell = API::LayoutPoint{column, row};
    return true;
}

QMimeData *tileMimeData(API::LayoutPoint cell)
{
    QByteArray payload;
    QDataStream stream(&payload, QIODevice::WriteOnly);
    stream << cell.row << cell.column;
    auto *data = new QMimeData;
    data->setData(swapFormat, payload);
    return data;
}

} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
