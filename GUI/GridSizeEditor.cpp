// SPDX-License-Identifier: MIT
#include "GUI/GridSizeEditor.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPainter>
#include <QToolTip>

#include "GUI/BubbleMask.h"
#include "GUI/Colours.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

constexpr QSize popupSize(104, 92);
constexpr int marginPixels = 10;
constexpr int farMarginPixels = 9;
constexpr int cellStepX = 14;
constexpr int cellStepY = 12;
constexpr qreal cellWidth = 12;
constexpr qreal cellHeight = 10;
/// A tool tip stands lower than it is told, clear of a pointer.
constexpr int tipRisePixels = 12;
constexpr qreal popupRadius = 4.0;
constexpr qreal cellRadius = 2.0;

const QColor currentColour(129, 134, 144);

/// Columns first, as screens are measured; empty for no size.
QString sizeText(const GridSize &size)
{
    if (size.rows <= 0 || size.columns <= 0)
        return QString();
    return QStringLiteral("%1 × %2").arg(size.columns).arg(size.rows);
}

} // namespace

GridSizeEditor::GridSizeEditor(QWidget *parent) : QWidget(parent, Qt::Popup)
{
    setAttribute(Qt::WA_DeleteOnClose);
    setAttribute(Qt::WA_TranslucentBackground);
    setAutoFillBackground(false);
    setMouseTracking(true);
    setFocus();
    resize(popupSize);
    cutToPainting(this);
    setCursor(Qt::PointingHandCursor);
}

void GridSizeEditor::setCurrentSize(int rows, int columns)
{
    current = {rows, columns};
    tell(current);
    update();
}

void GridSizeEditor::tell(const GridSize &size)
{
    setAccessibleName(tr("Grid size: %1").arg(sizeText(size)));
}

GridSize GridSizeEditor::sizeAt(const QPoint &position, const QSize &size)
{
    const int right = size.width() - 1;
    const int bottom = size.height() - 1;
    if (position.x() < marginPixels || position.x() >= right - farMarginPixels ||
        position.y() >= bottom - farMarginPixels)
        return {0, 0};
    return {static_cast<int>((position.y() - marginPixels) / static_cast<double>(cellStepY) + 1.0),
            static_cast<int>((position.x() - marginPixels) / static_cast<double>(cellStepX) + 1.0)};
}

void GridSizeEditor::paintEvent(QPaintEvent *event)
{
    QWidget::paintEvent(event);
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Qt::NoPen);
    painter.setBrush(Colours::panel());
    painter.drawRoundedRect(rect(), popupRadius, popupRadius);
    for (int row = 0; row < maxGridSide; ++row) {
        for (int column = 0; column < maxGridSide; ++column) {
            if (row < hovered.rows && column < hovered.columns)
                painter.setBrush(Colours::accent());
            else if (row < current.rows && column < current.columns)
                painter.setBrush(currentColour);
            else
                painter.setBrush(Colours::faint());
            const QRectF cell(marginPixels + cellStepX * column, marginPixels + cellStepY * row,
                              cellWidth, cellHeight);
            painter.drawRoundedRect(cell, cellRadius, cellRadius);
        }
    }
}

void GridSizeEditor::mouseMoveEvent(QMouseEvent *event)
{
    mark(sizeAt(event->pos(), size()));
}

void GridSizeEditor::mark(const GridSize &marked)
{
    if (marked == hovered)
        return;
    hovered = marked;
    tell(hovered.rows > 0 && hovered.columns > 0 ? hovered : current);
    update();
    // Below the matrix, which has no room for words.
    const QPoint below = rect().bottomLeft() - QPoint(0, tipRisePixels);
    QToolTip::showText(mapToGlobal(below), sizeText(hovered), this);
}

void GridSizeEditor::keyPressEvent(QKeyEvent *event)
{
    GridSize next = hovered.rows > 0 && hovered.columns > 0 ? hovered : current;
    switch (event->key()) {
    case Qt::Key_Left:
        --next.columns;
        break;
    case Qt::Key_Right:
        ++next.columns;
        break;
    case Qt::Key_Up:
        --next.rows;
        break;
    case Qt::Key_Down:
        ++next.rows;
        break;
    case Qt::Key_Return:
    case Qt::Key_Enter:
    case Qt::Key_Space:
        pick();
        return;
    default:
        QWidget::keyPressEvent(event); // which closes a popup on Esc
        return;
    }
    mark({qBound(1, next.rows, maxGridSide), qBound(1, next.columns, maxGridSide)});
}

void GridSizeEditor::mousePressEvent(QMouseEvent *)
{
    pick();
}

void GridSizeEditor::pick()
{
    if (hovered.rows > 0 && hovered.columns > 0)
        emit sizeSelected(hovered.rows, hovered.columns);
    else
        close();
}

} // namespace GUI
} // namespace ZorvaneClient
