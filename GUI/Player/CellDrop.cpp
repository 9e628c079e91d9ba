// SPDX-License-Identifier: MIT
#include "GUI/Player/CellDrop.h"

#include <QDropEvent>
#include <QWidget>

#include "API/CloudAPIClient.h"
#include "API/Server.h"
#include "GUI/DragFormats.h"

namespace ZorvaneClient {
namespace GUI {
namespace Player {

namespace {

API::CameraPtr cameraIn(const QMimeData &data)
{
    const auto id = draggedCamera(data);
    if (!id)
        return API::CameraPtr();
    const API::ServerPtr server = API::CloudAPIClient::serverList().value(id->server);
    return server ? server->cameras().value(id->camera) : API::CameraPtr();
}

} // namespace

bool acceptsDrag(const QDropEvent &event, const QWidget &target)
{
    const QMimeData &data = *event.mimeData();
    if (!carries(data, DragFormat::Camera) && !carries(data, DragFormat::Tile))
        return false;
    if (event.proposedAction() != Qt::MoveAction)
        return true;
    const QObject *source = event.source();
    return source && source->parent() == target.parent();
}

CellDrop takeDrop(QDropEvent *event)
{
    CellDrop drop;
    if (event->proposedAction() == Qt::CopyAction)
        drop.camera = cameraIn(*event->mimeData());
    else if (event->proposedAction() == Qt::MoveAction)
        drop.tile = draggedTile(*event->mimeData());
    else
        return drop;
    event->acceptProposedAction();
    return drop;
}

} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
