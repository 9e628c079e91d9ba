// SPDX-License-Identifier: MIT
// Grids in words: "a . | b:2x1 ." has two rows, of a camera by its name, an empty cell, a camera
// over 2 rows and 1 column, and another empty cell.
#pragma once

#include "tests/support/Test.h"

#include "API/Camera.h"
#include "API/CloudAPIClient.h"
#include "API/Layout.h"
#include "API/Server.h"
#include "App/ServiceProfile.h"
#include "GUI/LayoutWidget.h"
#include "GUI/Player/VideoPlaceholder.h"
#include "GUI/Player/VideoWidget.h"
#include "tests/support/Roster.h"

namespace ZorvaneClient::Tests {

/// The first camera of the roster with that name.
inline API::CameraPtr cameraNamed(const QString &name)
{
    for (const API::ServerPtr &server : API::CloudAPIClient::serverList()) {
        for (const API::CameraPtr &camera : server->cameras()) {
            if (camera->name() == name)
                return camera;
        }
    }
    return API::CameraPtr();
}

inline API::LayoutPtr layoutOf(const QString &text)
{
    const QStringList lines = text.split(" | "_s);
    auto layout = API::LayoutPtr::create();
    layout->resize(int(lines.size()), int(lines.first().split(' ').size()));
    for (int row = 0; row < layout->rows(); ++row) {
        for (int column = 0; column < layout->columns(); ++column) {
            const QStringList cell = (lines.at(row).split(' ').at(column) + ":1x1").split(':');
            const QStringList span = cell.at(1).split('x');
            if (const API::CameraPtr camera = cameraNamed(cell.first()))
                layout->setCamera(camera, row, column, span.at(0).toInt(), span.at(1).toInt());
        }
    }
    return layout;
}

inline GUI::LayoutWidget *gridOf(const QWidget &window)
{
    return window.findChild<GUI::LayoutWidget *>();
}

/// The tile or placeholder that begins in this cell.
inline QWidget *widgetAt(const GUI::LayoutWidget &grid, int row, int column)
{
    const auto *cells = qobject_cast<QGridLayout *>(grid.layout());
    for (int index = 0, place[4]; index < cells->count(); ++index) {
        cells->getItemPosition(index, &place[0], &place[1], &place[2], &place[3]);
        if (place[0] == row && place[1] == column)
            return cells->itemAt(index)->widget();
    }
    return nullptr;
}

/// What the grid shows; "?" where that is not what its layout says.
inline QString cellsOf(const GUI::LayoutWidget &grid)
{
    const auto *cells = qobject_cast<QGridLayout *>(grid.layout());
    QMap<int, QMap<int, QString>> lines;
    for (int index = 0, row, column, rows, columns; index < cells->count(); ++index) {
        cells->getItemPosition(index, &row, &column, &rows, &columns);
        const auto *tile = qobject_cast<GUI::Player::VideoWidget *>(cells->itemAt(index)->widget());
        const API::CameraPtr camera = tile ? tile->camera() : API::CameraPtr();
        const bool agrees = grid.workingLayout()->cellAt(row, column).camera == camera &&
                            (!tile || tile->position() == API::LayoutPoint{column, row});
        const QString span = rows * columns > 1 ? ":%1x%2"_s.arg(rows).arg(columns) : QString();
        lines[row][column] += (tile ? camera->name() : "."_s) + (agrees ? "" : "?") + span;
    }
    QStringList result;
    for (const auto &line : qAsConst(lines))
        result << QStringList(line.values()).join(' ');
    return result.join(" | "_s);
}

/// Drags these values, one after the other, over a widget and lets go, if the widget wants it.
template <typename... Values>
bool drop(QWidget *target, const QString &format, const Values &...values)
{
    QByteArray bytes;
    QDataStream stream(&bytes, QIODevice::WriteOnly);
    (stream << ... << values);
    QMimeData data;
    data.setData(format, bytes);
    QDragEnterEvent enter(QPoint(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    QCoreApplication::sendEvent(target, &enter);
    QDropEvent drop(QPointF(5, 5), Qt::CopyAction, &data, Qt::LeftButton, Qt::NoModifier);
    if (enter.isAccepted())
        QCoreApplication::sendEvent(target, &drop);
    return enter.isAccepted();
}

/// Requests of the program end on loopback.
inline void useServiceAt(int port)
{
    App::ServiceProfile profile;
    profile.apiHost = profile.streamingHost = "127.0.0.1"_s;
    profile.apiPort = profile.streamingPort = port;
    App::ServiceProfile::setCurrent(profile);
}

} // namespace ZorvaneClient::Tests
