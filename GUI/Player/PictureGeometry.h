// SPDX-License-Identifier: MIT
#pragma once

#include <QRect>
#include <QSize>

namespace ZorvaneClient {
namespace GUI {
namespace Player {
namespace Internal {

/// Shape of a tile before the first stream has told its own.
constexpr double defaultAspectRatio = 4.0 / 3.0;

/// Width over height of a stream as shown when turned by `rotation` degrees. A size of 0 gives
/// 0, infinity or no number.
double aspectRatioOf(QSize stream, int rotation);

/// Where a picture of that shape stands in a tile: as large as it gets uncropped, centred.
/// Empty for a shape that can't be shown.
QRect fitPicture(QSize tile, double aspectRatio);

/// Size of the text that stands in for a picture.
int messagePixelSize(QSize tile);

/// How many pixels of the tile's width the camera's name may take.
int nameWidth(int tileWidth);

} // namespace Internal
} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
