// SPDX-License-Identifier: MIT
#pragma once

#include <QPointF>
#include <QRect>
#include <QRectF>
#include <QSize>

namespace ZorvaneClient {
namespace GUI {
namespace Player {
namespace Internal {

/// Which part of a picture fills the place of the whole. Points and sizes are in fractions of
/// the picture as it is seen, turned and mirrored: (0, 0) is its upper left corner, (1, 1) its
/// lower right one.
class PictureZoom
{
public:
    static constexpr double maxFactor = 16.0;

    double factor() const { return enlargement; }
    bool isZoomed() const { return enlargement > 1.0; }
    QRectF part() const;

    /// Enlarges `by` times, within 1 to maxFactor, and leaves what is seen at `place` where it
    /// is, as far as the part stays within the picture. `place` is in fractions of the area
    /// that the part fills.
    void zoomAt(QPointF place, double by);
    /// The picture follows a pointer that moved by that fraction of the area, up to its edges.
    void pan(QPointF moved);
    void reset();

private:
    void moveTo(QPointF corner);

    double enlargement = 1.0;
    QPointF origin; ///< upper left corner of the part
};

/// How many times a turn of the wheel by `eighthsOfDegree` enlarges; below 1 it makes smaller.
double zoomOfWheel(int eighthsOfDegree);

/// Where `place` stands in `area`, as a fraction of it. What is outside counts as its edge.
QPointF fractionOf(const QRect &area, QPointF place);

/// Where the map stands that shows the part: small, in the lower right corner of the tile above
/// its bar, in the shape of the picture that fills `picture`.
QRect zoomMapPlace(QSize tile, const QRect &picture);

/// The part on a map that stands there, never too small to be seen.
QRectF zoomMapPart(const QRect &map, const PictureZoom &zoom);

} // namespace Internal
} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
