// SPDX-License-Identifier: MIT
#include "GUI/Player/PictureGeometry.h"

#include <cmath>

namespace ZorvaneClient {
namespace GUI {
namespace Player {
namespace Internal {

namespace {

constexpr int halfTurnDegrees = 180;

constexpr int smallMessagePixels = 12;
constexpr int largeMessagePixels = 14;
constexpr QSize largeMessageTile(161, 121);

constexpr double tileWidthsPerName = 2.5;

} // namespace

double aspectRatioOf(QSize stream, int rotation)
{
    const double width = stream.width();
    const double height = stream.height();
    return rotation % halfTurnDegrees == 0 ? width / height : height / width;
}

QRect fitPicture(QSize tile, double aspectRatio)
{
    if (!std::isfinite(aspectRatio) || aspectRatio <= 0 || tile.isEmpty())
        return QRect();
    const int w = tile.width();
    const int h = tile.height();
    if (aspectRatio > static_cast<double>(w) / h) {
        const int height = static_cast<int>(w / aspectRatio);
        return QRect(0, (h - height) / 2, w, height);
    }
    const int width = static_cast<int>(h * aspectRatio);
    return QRect((w - width) / 2, 0, width, h);
}

int messagePixelSize(QSize tile)
{
    const bool isLarge =
        tile.width() >= largeMessageTile.width() && tile.height() >= largeMessageTile.height();
    return isLarge ? largeMessagePixels : smallMessagePixels;
}

int nameWidth(int tileWidth)
{
    return static_cast<int>(tileWidth / tileWidthsPerName);
}

} // namespace Internal
} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
