// SPDX-License-Identifier: MIT
// The grid as a place to drop on.
#include "GUI/LayoutWidget.h"

#include <QDragEnterEvent>

#include "API/Camera.h"
#include "API/CloudAPIClient.h"
#include "API/Layout.h"
#include "API/Server.h"
#include "GUI/DragFormats.h"
#include "GUI/GridRules.h"
#include "GUI/LayoutWidgetPrivate.h"
#include "GUI/StyleSheet.h"

namespace ZorvaneClient {
namespace GUI {

void LayoutWidget::dragEnterEvent(QDragEnterEvent *event)
{
    const QMimeData &dragged = *event->mimeData();
    if (!carries(dragged, DragFormat::Server) && !carries(dragged, DragFormat::Layout)) {
        event->ignore();
        return;
    }
    event->acceptProposedAction();
    markDropTarget(this, true);
}

void LayoutWidget::dragLeaveEvent(QDragLeaveEvent *)
{
    markDropTarget(this, false);
}

void LayoutWidget::dropEvent(QDropEvent *event)
{
    markDropTarget(this, false);
    if (event->source() == this && event->possibleActions().testFlag(Qt::MoveAction))
        return;
    if (event->proposedAction() != Qt::CopyAction && event->proposedAction() != Qt::MoveAction)
        return;
    event->acceptProposedAction();
    const QMimeData &dragged = *event->mimeData();
    if (const auto server = draggedServer(dragged))
        dropServer(*server);
    else if (const auto layout = draggedLayout(dragged))
        dropLayout(*layout);
}

void LayoutWidget::dropLayout(const QString &name)
{
    const API::LayoutsContainer layouts = API::CloudAPIClient::layoutList();
    for (const API::LayoutPtr &layout : layouts) {
        if (layout->name() == name) {
            emit layoutDropped(layout);
            return;
        }
    }
}

void LayoutWidget::dropServer(const API::server_id_t &id)
{
    const API::ServerPtr server = API::CloudAPIClient::serverList().value(id);
    // The server can leave the roster in the middle of its own drag.
    if (!server)
        return;

    const QList<API::CameraPtr> cameras = server->sortedCameras();
    const int cameraCount = static_cast<int>(cameras.size());
    const int freeCells = d->workingLayout ? d->workingLayout->freeCellCount() : 0;
    d->ensureWorkingCopy();
    if (cameraCount > freeCells) {
        const GridSize present{d->workingLayout->rows(), d->workingLayout->columns()};
        const GridSize size = gridSizeForServer(present, cameraCount, freeCells);
        resizeLayout(size.rows, size.columns);
        if (present == GridSize{1, 1})
            emit serverAdded(server);
    }
    for (const API::CameraPtr &camera : cameras)
        addCamera(camera);
}

} // namespace GUI
} // namespace ZorvaneClient
