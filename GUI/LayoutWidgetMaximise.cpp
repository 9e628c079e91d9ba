// SPDX-License-Identifier: MIT
// One tile alone in place of the grid, for as long as it is looked at. The layout knows nothing
// of it, and every tile plays on.
#include "GUI/LayoutWidget.h"

#include "API/Layout.h"
#include "GUI/GridRules.h"
#include "GUI/LayoutWidgetPrivate.h"
#include "GUI/Player/VideoWidget.h"

namespace ZorvaneClient {
namespace GUI {

using Player::VideoWidget;

bool LayoutWidget::isMaximised() const
{
    return d->maximised;
}

void LayoutWidget::toggleMaximised(VideoWidget *tile)
{
    const bool isBack = tile == d->maximised;
    showAllTiles();
    if (!tile || isBack || d->grid->indexOf(tile) < 0 || d->isSingleCell())
        return;
    d->maximise(tile);
    if (d->autoQuality)
        giveQuality(tile, tileQuality(GridSize(), 1, 1));
}

void LayoutWidget::showAllTiles()
{
    if (VideoWidget *tile = d->leaveMaximised())
        giveQuality(tile, d->qualityBefore);
}

void LayoutWidget::beginDrag()
{
    d->dragged = qobject_cast<VideoWidget *>(sender());
    showAllTiles();
}

void LayoutWidget::endDrag()
{
    d->dragged.clear();
    giveOwedQualities();
}

void LayoutWidget::giveQuality(VideoWidget *tile, int quality)
{
    if (d->mustKeepStreams())
        d->owedQualities.insert(tile, quality);
    else
        tile->setQuality(quality);
}

void LayoutWidget::giveOwedQualities()
{
    if (d->mustKeepStreams())
        return;
    const QMap<VideoWidget *, int> owed = d->owedQualities;
    d->owedQualities.clear();
    for (auto tile = owed.cbegin(); tile != owed.cend(); ++tile)
        tile.key()->setQuality(tile.value());
}

} // namespace GUI
} // namespace ZorvaneClient
