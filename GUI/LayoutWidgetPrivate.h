// SPDX-License-Identifier: MIT
#pragma once

#include <QGridLayout>
#include <QList>
#include <QMultiMap>

#include "API/Types.h"

namespace ZorvaneClient {
namespace GUI {

class PlayerNotification;

namespace Player {
class VideoWidget;
}

namespace Internal {

class LayoutWidgetPrivate
{
public:
    QGridLayout *grid = nullptr;
    API::LayoutPtr workingLayout;
    /// The same object as workingLayout until the first edit.
    API::LayoutPtr savedLayout;
    /// A camera may stand in several cells.
    QMultiMap<API::CameraPtr, Player::VideoWidget *> players;
    /// Newest first.
    QList<PlayerNotification *> hints;
    bool isPaused = false;
    bool autoQuality = true;

    /// Cell of `widget` in the grid, scanned row by row; (-1, -1) if it isn't there.
    API::LayoutPoint cellOf(const QWidget *widget) const
    {
        for (int row = 0; row < grid->rowCount(); ++row) {
            for (int column = 0; column < grid->columnCount(); ++column) {
                const QLayoutItem *item = grid->itemAtPosition(row, column);
                if (item && const_cast<QLayoutItem *>(item)->widget() == widget)
                    return {column, row};
            }
        }
        return {-1, -1};
    }
};

} // namespace Internal
} // namespace GUI
} // namespace ZorvaneClient
