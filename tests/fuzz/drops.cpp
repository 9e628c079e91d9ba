// SPDX-License-Identifier: MIT
#include <QCoreApplication>
#include <QDropEvent>
#include <QMimeData>

#include "API/Layout.h"
#include "GUI/LayoutWidget.h"
#include "GUI/Player/VideoWidget.h"
#include "tests/fuzz/Roster.h"

using namespace ZorvaneClient;

/// Let go over the grid, a tile or an empty cell, the bytes leave a tile for each camera of the
/// layout.
void tryInput(const QByteArray &input)
{
    takeUsualRoster();
    static GUI::LayoutWidget grid;
    const QVariant start = jsonOf(
        R"({"rows":2,"columns":2,"cameras":[{"server":"s1","camera":7,"row":0,"column":1}]})");
    if (grid.playerCount() == 0 || grid.workingLayout() != grid.savedLayout())
        grid.openLayout(API::LayoutPtr::create(start.toMap()));

    QMimeData dragged;
    for (const char *format : {"camera", "server", "layout", "layout-swap"})
        dragged.setData(format, input.mid(1));
    const unsigned choice = input.isEmpty() ? 0 : static_cast<uchar>(input.at(0));
    const Qt::DropAction action = choice % 2 == 0 ? Qt::MoveAction : Qt::CopyAction;
    QDropEvent event(QPointF(), action, &dragged, Qt::LeftButton, Qt::NoModifier);
    QObject *on[] = {&grid, grid.players().first(), grid.findChild<QObject *>("VideoPlaceholder")};
    on[choice / 2 % 3]->event(&event); // nothing is dragged that the application would know of
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    const API::LayoutPtr shown = grid.workingLayout();
    check(shown->freeCellCount() + grid.playerCount() == shown->rows() * shown->columns());
}
