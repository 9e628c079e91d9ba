// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QFont>
#include <QImage>
#include <QRect>
#include <QString>

#include "GUI/Player/PictureZoom.h"

class QPainter;

namespace ZorvaneClient {
namespace GUI {
namespace Player {
namespace Internal {

enum class TileBorder { None, Hover, Selection };

/// What decides on the border of a tile.
struct BorderRule {
    bool isDropTarget = false;
    bool isActive = false;
    bool isHovered = false;
    int playerCount = 0; ///< tiles in all windows
    int cellCount = 0;   ///< cells in all windows

    /// A lone camera in a lone cell is not marked as selected.
    TileBorder border() const;
};

// One of these three begins each paint, and leaves no pixel of the tile as it was.

void paintBackground(QPainter &painter, const QRect &tile);

/// Draws `frame` into `target`, turned clockwise by `rotation` degrees and, after that, flipped
/// left to right if `mirror`, with background round it. The alpha of its pixels is ignored: a
/// camera's picture has nothing to show through. Of a zoomed picture the part fills `target`,
/// and a small map of the whole shows which one it is.
void paintPicture(QPainter &painter, const QRect &tile, const QRect &target, const QImage &frame,
                  int rotation, bool mirror, const PictureZoom &zoom = PictureZoom());

/// Writes `text` in the middle of the tile, on the background.
void paintMessage(QPainter &painter, const QRect &tile, const QFont &font, const QString &text);

// These go on top of that.

/// Dims a tile that is being dragged.
void paintDimming(QPainter &painter, const QRect &tile);

void paintBorder(QPainter &painter, const QRect &tile, TileBorder border);

} // namespace Internal
} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
