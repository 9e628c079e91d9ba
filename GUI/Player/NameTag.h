// SPDX-License-Identifier: MIT
#pragma once

#include <QPixmap>
#include <QString>

#include <tuple>

class QFont;
class QPainter;
class QRect;

namespace ZorvaneClient {
namespace GUI {
namespace Player {
namespace Internal {

/// The label that says whose picture a tile shows and what the tile does, where the bar has the
/// name. Drawn once and kept: a tile is painted with every frame.
class NameTag
{
public:
    /// Where both are too long for the tile, the name is cut.
    void paint(QPainter &painter, const QRect &tile, const QFont &font, const QString &name,
               const QString &state);

private:
    /// Name, state, width of the tile, pixels of the screen for each of its own.
    using Look = std::tuple<QString, QString, int, qreal>;

    Look look;
    QPixmap label;
};

} // namespace Internal
} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
