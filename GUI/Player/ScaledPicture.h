// SPDX-License-Identifier: MIT
#pragma once

class QImage;
class QPainter;
class QRect;
class QRectF;

namespace ZorvaneClient {
namespace GUI {
namespace Player {
namespace Internal {

/// Paints `part` of `picture`, in its pixels, into `target`: smoothly where pixels have to be
/// mixed, so that a number plate can be read; where each pixel of the picture is one of the
/// screen, mixing would only cost. Leaves the painter's clipping as it was.
void drawScaled(QPainter &painter, const QRect &target, const QImage &picture, const QRectF &part);

} // namespace Internal
} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
