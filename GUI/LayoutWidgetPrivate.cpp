// SPDX-License-Identifier: MIT
#include "GUI/LayoutWidgetPrivate.h"

#include <utility>

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

bool LayoutWidgetPrivate::isSingleCell() const
{
    return workingLayout && workingLayout->rows() * workingLayout->columns() == 1;
}

void LayoutWidgetPrivate::maximise(Player::VideoWidget *tile)
{
    // The grid gives the room of what is hidden to the rest.
    for (int index = 0; index < grid->count(); ++index)
        grid->itemAt(index)->widget()->setVisible(grid->itemAt(index)->widget() == tile);
    maximised = tile;
    qualityBefore = owedQualities.value(tile, tile->quality());
    tile->setAlone(true);
}

Player::VideoWidget *LayoutWidgetPrivate::leaveMaximised()
{
    Player::VideoWidget *tile = std::exchange(maximised, nullptr);
    if (!tile)
        return nullptr;
    for (int index = 0; index < grid->count(); ++index)
        grid->itemAt(index)->widget()->show();
    grid->activate(); // whoever drags the tile takes it along in its size in the grid
    tile->setAlone(false);
    tile->resetZoom();
    return tile;
}

void LayoutWidgetPrivate::takeOwedQualities()
{
    for (auto tile = owedQualities.cbegin(); tile != owedQualities.cend(); ++tile)
        tile.key()->takeQuality(tile.value());
    owedQualities.clear();
}

} // namespace Internal
} // namespace GUI
} // namespace ZorvaneClient
