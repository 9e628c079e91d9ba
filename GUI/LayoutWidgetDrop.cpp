// SPDX-License-Identifier: MIT
// The grid as a place to drop on, and its hints.
#include "GUI/LayoutWidget.h"

#include <QDataStream>
#include <QDragEnterEvent>
#include <QFileInfo>
#include <QMimeData>

#include "API/Camera.h"
#include "API/CloudAPIClient.h"
#include "API/Layout.h"
#include "API/Server.h"
#include "GUI/GridRules.h"
#include "GUI/LayoutWidgetPrivate.h"
#include "GUI/Player/PlayerNotification.h"
#include "GUI/Player/VideoWidget.h"
#include "GUI/StyleProperty.h"

namespace ZorvaneClient {
namespace GUI {

using Player::VideoWidget;

namespace {

const QString serverFormat = QStringLiteral("server");
const QString layoutFormat = QStringLiteral("layout");
constexpr int hintLeftPixels = 10;
constexpr int hintTopPixels = 10;
constexpr int hintSpacingPixels = 5;

QString folderLink(const QString &folder, const QString &text)
{
    return QStringLiteral("<a style=\"color: white\" href=\"") + folder + QStringLiteral("\">") +
           text + QStringLiteral("</a>");
}

} // namespace

void LayoutWidget::exchangeCells(int row, int column)
{
    auto *target = qobject_cast<QWidget *>(sender());
    VideoWidget *dragged = d->tileAt(row, column);
    if (!target || !dragged || target == dragged)
        return;
    const API::LayoutPoint targetCell = d->cellOf(target);
    if (targetCell.row < 0)
        return;

    d->grid->removeWidget(dragged);
    d->grid->removeWidget(target);
    d->grid->addWidget(target, row, column);
    d->grid->addWidget(dragged, targetCell.row, targetCell.column);
    dragged->setPosition(targetCell.row, targetCell.column);
    if (auto *targetTile = qobject_cast<VideoWidget *>(target))
        targetTile->setPosition(row, column);

    ensureWorkingCopy();
    d->workingLayout->swapCells(row, column, targetCell.row, targetCell.column);
    emit layoutModified();
}

void LayoutWidget::setDropTarget(bool isTarget)
{
    setStyleProperty(this, "drop", isTarget);
}

void LayoutWidget::dragEnterEvent(QDragEnterEvent *event)
{
    if (event->mimeData()->data(serverFormat).isEmpty() &&
        event->mimeData()->data(layoutFormat).isEmpty()) {
        event->ignore();
        return;
    }
    event->acceptProposedAction();
    if (!property("drop").toBool())
        setDropTarget(true);
}

void LayoutWidget::dragLeaveEvent(QDragLeaveEvent *)
{
    setDropTarget(false);
}

void LayoutWidget::dropEvent(QDropEvent *event)
{
    setDropTarget(false);
    if (event->source() == this && event->possibleActions().testFlag(Qt::MoveAction))
        return;
    if (event->proposedAction() != Qt::CopyAction && event->proposedAction() != Qt::MoveAction)
        return;
    event->acceptProposedAction();
    const QByteArray server = event->mimeData()->data(serverFormat);
    if (server.isEmpty())
        dropLayout(event->mimeData()->data(layoutFormat));
    else
        dropServer(server);
}

void LayoutWidget::dropLayout(const QByteArray &bytes)
{
    const QString name = QString::fromUtf8(bytes);
    const API::LayoutsContainer layouts = API::CloudAPIClient().layoutList();
    for (const API::LayoutPtr &layout : layouts) {
        if (layout->name() == name) {
            emit layoutDropped(layout);
            return;
        }
    }
}

void LayoutWidget::dropServer(const QByteArray &bytes)
{
    QDataStream stream(bytes);
    API::server_id_t id;
    stream >> id;
    const API::ServerPtr server = API::CloudAPIClient().serverList().value(id);
    // The server can leave the roster in the middle of its own drag.
    if (!server)
        return;

    const QList<API::CameraPtr> cameras = server->sortedCameras();
    const int cameraCount = static_cast<int>(cameras.size());
    const int freeCells = d->workingLayout ? d->workingLayout->freeCellCount() : 0;
    ensureWorkingCopy();
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

void LayoutWidget::addNotification(const QString &text, bool error)
{
    auto *hint = new PlayerNotification(text, error, this);
    connect(hint, &PlayerNotification::closed, this, [this, hint] {
        d->hints.removeOne(hint);
        hint->deleteLater();
        updateHintPositions();
    });
    d->hints.prepend(hint);
    hint->move(hintLeftPixels, -hint->height());
    hint->show();
    updateHintPositions();
}

void LayoutWidget::updateHintPositions()
{
    int y = hintTopPixels;
    for (PlayerNotification *hint : qAsConst(d->hints)) {
        hint->animateTo(QPoint(hintLeftPixels, y));
        y += hint->height() + hintSpacingPixels;
    }
}

void LayoutWidget::showSnapshotHint(QString path)
{
    addNotification(tr("Snapshot saved.") + QLatin1Char(' ') + folderLink(path, tr("Open folder")),
                    false);
}

void LayoutWidget::showExportDoneHint(QString path)
{
    addNotification(tr("Record saved.") + QLatin1Char(' ') +
                        folderLink(QFileInfo(path).absolutePath(), tr("Open folder")),
                    false);
}

void LayoutWidget::showExportErrorHint(QString)
{
    addNotification(tr("Error while exporting."), true);
}

} // namespace GUI
} // namespace ZorvaneClient
