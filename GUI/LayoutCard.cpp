// SPDX-License-Identifier: MIT
#include "GUI/LayoutCard.h"

#include <QMenu>
#include <QPainter>

#include "API/Camera.h"
#include "API/Layout.h"
#include "GUI/Colours.h"
#include "GUI/DragFormats.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

constexpr QSize pictureSize(640, 480);
constexpr qreal gridLineWidth = 3.0;
// A picture 640 by 480 shows no more lines than this; a Layout takes any number of them.
constexpr int maxPaintedSide = 160;

void paintPreviews(QPainter *painter, const API::Layout &layout, const QSize &cellSize)
{
    const QList<API::LayoutCell> cells = layout.cellList();
    for (const API::LayoutCell &cell : cells) {
        const int row = cell.row();
        const int column = cell.column();
        const bool inside =
            row >= 0 && row < layout.rows() && column >= 0 && column < layout.columns();
        if (!inside || !cell.camera)
            continue;
        const QPixmap preview = cell.camera->preview();
        if (preview.isNull())
            continue;
        const QPixmap scaled =
            preview.scaled(cellSize, Qt::KeepAspectRatio, Qt::FastTransformation);
        painter->drawPixmap(column * cellSize.width() + (cellSize.width() - scaled.width()) / 2,
                            row * cellSize.height() + (cellSize.height() - scaled.height()) / 2,
                            scaled);
    }
}

void paintLines(QPainter *painter, const API::Layout &layout, const QSize &cellSize)
{
    painter->setPen(QPen(Colours::panel(), gridLineWidth));
    for (int row = 1; row < layout.rows(); ++row)
        painter->drawLine(0, row * cellSize.height(), pictureSize.width(), row * cellSize.height());
    for (int column = 1; column < layout.columns(); ++column)
        painter->drawLine(column * cellSize.width(), 0, column * cellSize.width(),
                          pictureSize.height());
}

QPixmap pictureOf(const API::Layout &layout)
{
    QPixmap picture(pictureSize);
    picture.fill(Colours::tile());
    const bool paintable = layout.rows() > 0 && layout.columns() > 0 &&
                           layout.rows() <= maxPaintedSide && layout.columns() <= maxPaintedSide;
    if (!paintable)
        return picture;
    const QSize cellSize(pictureSize.width() / layout.columns(),
                         pictureSize.height() / layout.rows());
    QPainter painter(&picture);
    paintPreviews(&painter, layout, cellSize);
    paintLines(&painter, layout, cellSize);
    return picture;
}

} // namespace

LayoutCard::LayoutCard(API::LayoutPtr layout, QWidget *parent) : Preview(KindLayout, parent)
{
    setObjectName(QStringLiteral("LayoutCard"));
    auto *actions = new QMenu(this);
    actions->addAction(tr("Open"), this, &LayoutCard::onOpenLayout);
    actions->addAction(tr("Open in new window"), this, &LayoutCard::onOpenInNewWindow);
    actions->addAction(tr("Delete"), this, &LayoutCard::deleteLayout);
    setMenu(actions);
    connect(this, &Preview::clicked, this, &LayoutCard::onOpenLayout);
    setLayoutInfo(layout);
}

void LayoutCard::setLayoutInfo(API::LayoutPtr layout)
{
    shownLayout = layout;
    setText(layout->name());
    setImage(pictureOf(*layout));
}

QMimeData *LayoutCard::createMimeData()
{
    return layoutDrag(shownLayout->name());
}

void LayoutCard::onOpenLayout()
{
    emit openLayout(shownLayout);
}

void LayoutCard::onOpenInNewWindow()
{
    emit openInNewWindow(shownLayout);
}

void LayoutCard::deleteLayout()
{
    emit layoutDeleted(shownLayout);
}

} // namespace GUI
} // namespace ZorvaneClient
