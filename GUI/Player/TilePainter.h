// SPDX-License-Identifier: MIT
#pragma once

#include <QColor>
#include <QFont>
#include <QImage>
#include <QRect>
#include <QString>

QT_BEGIN_NAMESPACE
class QPainter;
QT_END_NAMESPACE

namespace ZorvaneClient {
namespace GUI {
namespace Player {
namespace Internal {

constexpr QColor tileBackground(25, 25, 29, 255);

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

// Each of the first three paints the whole tile.

void paintBackground(QPainter &painter, const QRect &tile);

/// Draws `image` into `target`, turned clockwise by `rotation` degrees and, after that,
/// flipped left to right if `mirror`.
void paintPicture(QPainter &painter, const QRect &tile, const QRect &target, const QImage &image,
                  int rotation, bool mirror);

/// Writes `text` in the middle of the tile.
void paintMessage(QPainter &painter, const QRect &tile, const QFont &font, const QString &text);

/// Dims a tile that is being dragged.
void paintDimming(QPainter &painter, const QRect &tile);

void paintBorder(QPainter &painter, const QRect &tile, TileBorder border);

} // namespace Internal
} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
