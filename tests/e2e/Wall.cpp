// SPDX-License-Identifier: MIT
#include "tests/e2e/Wall.h"

#include "tests/support/Test.h"

#include "GUI/LayoutCard.h"
#include "GUI/LayoutWidget.h"
#include "GUI/MainWindow.h"
#include "GUI/Player/VideoWidget.h"
#include "tests/e2e/EndToEnd.h"

namespace ZorvaneClient::Tests {

namespace {

std::unique_ptr<QMimeData> mimeData(const QString &format, const QByteArray &payload)
{
    auto data = std::make_unique<QMimeData>();
    data->setData(format, payload);
    return data;
}

QString cellText(const QImage &wall, const QWidget *widget)
{
    if (!widget)
        return "-"_s;
    if (!qobject_cast<const GUI::Player::VideoWidget *>(widget))
        return "."_s;
    const auto strip = StripReader::readTile(wall.copy(widget->geometry()));
    return strip ? QString::number(strip->camera) : "?"_s;
}

} // namespace

WallPlan::WallPlan(int rows, int columns)
    : rowCount(rows), columnCount(columns), cells(rows * columns)
{
}

int WallPlan::rows() const
{
    return rowCount;
}

int WallPlan::columns() const
{
    return columnCount;
}

int WallPlan::at(int row, int column) const
{
    return cells.at(row * columnCount + column);
}

void WallPlan::set(int row, int column, int camera)
{
    cells[row * columnCount + column] = camera;
}

void WallPlan::exchange(API::LayoutPoint a, API::LayoutPoint b)
{
    std::swap(cells[a.row * columnCount + a.column], cells[b.row * columnCount + b.column]);
}

void WallPlan::resize(int rows, int columns)
{
    WallPlan resized(rows, columns);
    for (int row = 0; row < std::min(rows, rowCount); ++row) {
        for (int column = 0; column < std::min(columns, columnCount); ++column)
            resized.set(row, column, at(row, column));
    }
    *this = resized;
}

void WallPlan::append(int camera)
{
    const auto empty = std::find(cells.begin(), cells.end(), 0);
    if (empty != cells.end())
        *empty = camera;
}

QString WallPlan::text() const
{
    QStringList lines;
    for (int row = 0; row < rowCount; ++row) {
        QStringList line;
        for (int column = 0; column < columnCount; ++column) {
            const int camera = at(row, column);
            line << (camera == 0 ? "."_s : QString::number(camera));
        }
        lines << line.join(QLatin1Char(' '));
    }
    return lines.join(" | "_s);
}

GUI::LayoutWidget *gridOf(GUI::MainWindow *window)
{
    return window ? window->findChild<GUI::LayoutWidget *>() : nullptr;
}

QWidget *widgetInCell(GUI::LayoutWidget *grid, API::LayoutPoint cell, int rows, int columns)
{
    const QPoint middle((2 * cell.column + 1) * grid->width() / (2 * columns),
                        (2 * cell.row + 1) * grid->height() / (2 * rows));
    QWidget *widget = grid->childAt(middle);
    while (widget && widget->parentWidget() != grid)
        widget = widget->parentWidget();
    return widget;
}

QString paintedWall(GUI::MainWindow *window, int rows, int columns)
{
    GUI::LayoutWidget *grid = gridOf(window);
    if (!grid)
        return QString();
    const QImage wall = grid->grab().toImage();
    QStringList lines;
    for (int row = 0; row < rows; ++row) {
        QStringList line;
        for (int column = 0; column < columns; ++column)
            line << cellText(wall, widgetInCell(grid, {column, row}, rows, columns));
        lines << line.join(QLatin1Char(' '));
    }
    return lines.join(" | "_s);
}

bool everyTileMoves(GUI::MainWindow *window)
{
    QHash<GUI::Player::VideoWidget *, int> waitingFor;
    const QList<GUI::Player::VideoWidget *> tiles = gridOf(window)->players();
    for (GUI::Player::VideoWidget *tile : tiles) {
        const auto strip = stripOf(tile);
        waitingFor.insert(tile, strip ? strip->milliseconds : -1);
    }
    return QTest::qWaitFor(
        [&] {
            for (GUI::Player::VideoWidget *tile : tiles) {
                const auto strip = stripOf(tile);
                if (strip && waitingFor.contains(tile) &&
                    waitingFor.value(tile) != strip->milliseconds)
                    waitingFor.remove(tile);
            }
            return waitingFor.isEmpty();
        },
        pictureDeadlineMs);
}

std::unique_ptr<QMimeData> cameraDrag(const QString &server, int camera)
{
    QByteArray payload;
    QDataStream stream(&payload, QIODevice::WriteOnly);
    stream << server << camera;
    return mimeData("camera"_s, payload);
}

std::unique_ptr<QMimeData> serverDrag(const QString &server)
{
    QByteArray payload;
    QDataStream stream(&payload, QIODevice::WriteOnly);
    stream << server;
    return mimeData("server"_s, payload);
}

std::unique_ptr<QMimeData> tileDrag(API::LayoutPoint cell)
{
    QByteArray payload;
    QDataStream stream(&payload, QIODevice::WriteOnly);
    stream << cell.row << cell.column;
    return mimeData("layout-swap"_s, payload);
}

bool dropOn(QWidget *target, const QMimeData &data, Qt::DropAction action)
{
    if (!target)
        return false;
    const QPoint middle = target->rect().center();
    QDragEnterEvent enter(middle, action, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(target, &enter);
    if (!enter.isAccepted())
        return false;
    // Goes to whoever accepted the drag.
    QDropEvent drop(middle, action, &data, Qt::LeftButton, Qt::NoModifier);
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
