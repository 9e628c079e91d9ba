// SPDX-License-Identifier: MIT
#include "GUI/LayoutWidgetPrivate.h"

#include "API/Layout.h"
#include "GUI/Player/VideoPlaceholder.h"
#include "GUI/Player/VideoWidget.h"

namespace ZorvaneClient {
namespace GUI {
namespace Internal {

namespace {

API::LayoutPoint cellOfItem(const QGridLayout &grid, int index)
{
    int row = 0;
    int column = 0;
    int rowSpan = 0;
    int columnSpan = 0;
    grid.getItemPosition(index, &row, &column, &rowSpan, &columnSpan);
    return {column, row};
}

} // namespace

void LayoutWidgetPrivate::ensureWorkingCopy()
{
    if (workingLayout != savedLayout)
        return;
    workingLayout =
        workingLayout ? API::LayoutPtr::create(*workingLayout) : API::LayoutPtr::create();
}

API::LayoutPoint LayoutWidgetPrivate::cellOf(QWidget *widget) const
{
    const int index = grid->indexOf(widget);
    return index < 0 ? API::LayoutPoint{-1, -1} : cellOfItem(*grid, index);
}

Player::VideoWidget *LayoutWidgetPrivate::tileAt(int row, int column) const
{
    for (Player::VideoWidget *tile : players) {
        if (tile->position() == API::LayoutPoint{column, row})
            return tile;
    }
    return nullptr;
}

Player::VideoPlaceholder *LayoutWidgetPrivate::placeholderAt(int row, int column) const
{
    for (int index = 0; index < grid->count(); ++index) {
        auto *placeholder = qobject_cast<Player::VideoPlaceholder *>(grid->itemAt(index)->widget());
        if (placeholder && cellOfItem(*grid, index) == API::LayoutPoint{column, row})
            return placeholder;
    }
    return nullptr;
}

} // namespace Internal
} // namespace GUI
} // namespace ZorvaneClient
