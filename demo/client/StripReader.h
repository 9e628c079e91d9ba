// SPDX-License-Identifier: MIT
#pragma once

#include <QImage>
#include <QRect>

#include <optional>

namespace ZorvaneDemo {

/// What the strip at the foot of a demo picture says.
struct Strip {
    int camera = 0;       ///< the camera's number in the demo world
    int milliseconds = 0; ///< of the picture, within the wall clock's minute
};

/// Reads the strip from pictures of the demo service, down to 155x87 pixels.
class StripReader
{
public:
    /// `picture` is the video picture alone. Nothing when no strip can be read.
    static std::optional<Strip> read(const QImage &picture);
    /// The same for a painted tile: the 16:9 picture stands centred in it, as large as fits.
    static std::optional<Strip> readTile(const QImage &tile);
    /// Where a picture of `source` size stands in a tile.
    static QRect pictureArea(const QSize &tile, const QSize &source = QSize(16, 9));
    /// Milliseconds from the strip's moment until `nowMs` (since the epoch), less than a
    /// minute; a moment up to a second in the future counts as negative.
    static int ageMs(const Strip &strip, qint64 nowMs);
};

} // namespace ZorvaneDemo
