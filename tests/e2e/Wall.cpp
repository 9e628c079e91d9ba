// SPDX-License-Identifier: MIT
#include "tests/e2e/Wall.h"

#include "GUI/LayoutCard.h"
#include "tests/e2e/EndToEnd.h"

namespace ZorvaneClient::Tests {

void WallPlan::exchange(API::LayoutPoint a, API::LayoutPoint b)
{
    std::swap(cells[a.row][a.column], cells[b.row][b.column]);
}

void WallPlan::resize(int rows, int columns)
{
    cells.resize(rows);
    for (QVector<int> &row : cells)
        row.resize(columns);
}

void WallPlan::append(int camera)
{
    for (QVector<int> &row : cells) {
        const auto empty = std::find(row.begin(), row.end(), 0);
        if (empty != row.end()) {
            *empty = camera;
            return;
        }
    }
}

QString WallPlan::text() const
{
    QStringList lines;
    for (const QVector<int> &row : cells) {
        QStringList line;
        for (const int camera : row)
            line << (camera == 0 ? "."_s : QString::number(camera));
        lines << line.join(' ');
    }
    return lines.join(" | "_s);
}

GUI::LayoutWidget *gridOf(GUI::MainWindow *window)
{
    return window ? window->findChild<GUI::LayoutWidget *>() : nullptr;
}

QWidget *widgetInCell(GUI::LayoutWidget *grid, API::LayoutPoint cell, int rows, int columns)
{
    QWidget *widget = grid->childAt((2 * cell.column + 1) * grid->width() / (2 * columns),
                                    (2 * cell.row + 1) * grid->height() / (2 * rows));
    while (widget && widget->parentWidget() != grid)
        widget = widget->parentWidget();
    return widget;
}

QString wallIn(const QImage &grid, int rows, int columns, const CellPlace &placeOf)
{
    WallPlan found(rows, columns);
    for (int row = 0; row < rows; ++row) {
        for (int column = 0; column < columns; ++column) {
            const QImage tile = grid.copy(placeOf({column, row}));
            found.cells[row][column] = StripReader::readTile(tile).value_or(Strip()).camera;
        }
    }
    return found.text();
}

QString paintedWall(GUI::MainWindow *window, int rows, int columns)
{
    GUI::LayoutWidget *grid = gridOf(window);
    if (!widgetInCell(grid, {columns - 1, rows - 1}, rows, columns))
        return QString();
    return wallIn(grid->grab().toImage(), rows, columns, [&](API::LayoutPoint cell) {
        const QWidget *widget = widgetInCell(grid, cell, rows, columns);
        return widget ? widget->geometry() : QRect();
    });
}

bool everyTileMoves(GUI::MainWindow *window)
{
    QHash<GUI::Player::VideoWidget *, int> still;
    const auto tiles = gridOf(window)->players();
    for (GUI::Player::VideoWidget *tile : tiles)
        still.insert(tile, stripOf(tile).value_or(Strip{0, -1}).milliseconds);
    return QTest::qWaitFor(
        [&] {
            for (GUI::Player::VideoWidget *tile : tiles) {
                const auto strip = stripOf(tile);
                if (strip && strip->milliseconds != still.value(tile, strip->milliseconds))
                    still.remove(tile);
            }
            return still.isEmpty();
        },
        pictureDeadlineMs);
}

bool dropOn(QWidget *target, QMimeData *data, Qt::DropAction action)
{
    const std::unique_ptr<QMimeData> owner(data);
    if (!target)
        return false;
    const QPoint middle = target->rect().center();
    QDragEnterEvent enter(middle, action, data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(target, &enter);
    if (!enter.isAccepted())
        return false;
    // Goes to whoever accepted the drag.
    QDropEvent drop(middle, action, data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(target, &drop);
    return drop.isAccepted();
}

void press(GUI::MainWindow *window, const char *button)
{
    QTest::mouseClick(window->findChild<QPushButton *>(QLatin1String(button)), Qt::LeftButton);
}

GUI::LayoutCard *layoutCard(GUI::MainWindow *window, const QString &name)
{
    const QList<GUI::LayoutCard *> cards = window->findChildren<GUI::LayoutCard *>();
    for (GUI::LayoutCard *card : cards) {
        if (card->findChild<QLabel *>("cameraName"_s)->text() == name)
            return card;
    }
    return nullptr;
}

} // namespace ZorvaneClient::Tests
