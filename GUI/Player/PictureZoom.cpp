// SPDX-License-Identifier: MIT
#include "GUI/Player/PictureZoom.h"

#include <QtGlobal>

#include <cmath>

namespace ZorvaneClient {
namespace GUI {
namespace Player {
namespace Internal {

namespace {

/// Below that it is the rounding of many small steps.
constexpr double smallestFactor = 1.01;

constexpr double eighthsPerDoubling = 3 * 120.0; // three notches of a common wheel

constexpr int mapsPerTile = 4; // in each direction
constexpr QSize largestMap(120, 120);
constexpr int mapRightPixels = 8;
constexpr int mapBottomPixels = 36; // the bar and a gap
constexpr double smallestPartPixels = 4.0;

} // namespace

QRectF PictureZoom::part() const
{
    return QRectF(origin, QSizeF(1.0, 1.0) / enlargement);
}

void PictureZoom::zoomAt(QPointF place, double by)
{
    const QPointF fixed = origin + place / enlargement;
    const double wanted = qBound(1.0, enlargement * by, maxFactor);
    enlargement = wanted < smallestFactor ? 1.0 : wanted;
    moveTo(fixed - place / enlargement);
}

void PictureZoom::pan(QPointF moved)
{
    moveTo(origin - moved / enlargement);
}

void PictureZoom::reset()
{
    *this = PictureZoom();
}

void PictureZoom::moveTo(QPointF corner)
{
    const double room = 1.0 - 1.0 / enlargement;
    origin = QPointF(qBound(0.0, corner.x(), room), qBound(0.0, corner.y(), room));
}

double zoomOfWheel(int eighthsOfDegree)
{
    return std::exp2(eighthsOfDegree / eighthsPerDoubling);
}

QPointF fractionOf(const QRect &area, QPointF place)
{
    if (area.isEmpty())
        return QPointF();
    const QPointF inside = place - area.topLeft();
    return QPointF(qBound(0.0, inside.x() / area.width(), 1.0),
                   qBound(0.0, inside.y() / area.height(), 1.0));
}

QRect zoomMapPlace(QSize tile, const QRect &picture)
{
    const QSize room = (tile / mapsPerTile).boundedTo(largestMap);
    QRect map(QPoint(), picture.size().scaled(room, Qt::KeepAspectRatio));
    map.moveBottomRight(
        QPoint(tile.width() - 1 - mapRightPixels, tile.height() - 1 - mapBottomPixels));
    return map;
}

QRectF zoomMapPart(const QRect &map, const PictureZoom &zoom)
{
    const QRectF part = zoom.part();
    const QSizeF size(qMax(smallestPartPixels, part.width() * map.width()),
                      qMax(smallestPartPixels, part.height() * map.height()));
    QRectF seen(QPointF(), size);
    seen.moveCenter(QPointF(map.x() + part.center().x() * map.width(),
                            map.y() + part.center().y() * map.height()));
    return seen;
}

} // namespace Internal
} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
