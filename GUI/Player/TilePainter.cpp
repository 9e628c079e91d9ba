// SPDX-License-Identifier: MIT
#include "GUI/Player/TilePainter.h"

#include <QPainter>
#include <QPen>
#include <QRectF>
#include <QRegion>
#include <QTransform>

#include "GUI/Colours.h"
#include "GUI/Player/PictureGeometry.h"
#include "GUI/Player/ScaledPicture.h"

namespace ZorvaneClient {
namespace GUI {
namespace Player {
namespace Internal {

namespace {

constexpr qreal borderWidth = 2.0;
constexpr qreal borderRadius = 1.0;
constexpr int borderInset = 1;

constexpr int rightAngleDegrees = 90;
constexpr int fullTurnDegrees = 360;

constexpr QColor hoverColour(66, 71, 80, 255);
constexpr QColor dimming = Colours::panel(150);
constexpr QColor mapFrame = Colours::panel();
constexpr QColor mapShade(0, 0, 0, 110);

QPen borderPen(const QColor &colour)
{
    return QPen(QBrush(colour), borderWidth, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin);
}

const QPen &selectionPen()
{
    static const QPen pen = borderPen(Colours::accent());
    return pen;
}

const QPen &hoverPen()
{
    static const QPen pen = borderPen(hoverColour);
    return pen;
}

QRect innerRect(const QRect &tile)
{
    return tile.adjusted(borderInset, borderInset, -borderInset, -borderInset);
}

/// The same pixels in place, without their alpha.
QImage opaque(const QImage &image)
{
    if (image.isNull())
        return image;
    return QImage(image.constBits(), image.width(), image.height(),
                  static_cast<int>(image.bytesPerLine()), QImage::Format_RGB32);
}

/// `frame` as it is seen. An upright one stays where it is; others are copied. Only one that is
/// turned by no multiple of a right angle gets an alpha, for its corners.
QImage finalPicture(const QImage &frame, int rotation, bool mirror)
{
    QImage picture = opaque(frame);
    if (rotation == 0 && !mirror)
        return picture;
    if (rotation % rightAngleDegrees != 0)
        picture = picture.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    QTransform transform;
    transform.rotate(rotation % fullTurnDegrees, Qt::ZAxis); // exact beyond a turn as well
    return picture.transformed(transform, Qt::FastTransformation).mirrored(mirror, false);
}

/// Fills what of the tile `picture` in `target` leaves free. What it covers would only be filled
/// in vain, and that takes as long as the picture itself.
void paintAround(QPainter &painter, const QRect &tile, const QRect &target, const QImage &picture)
{
    const bool covers = !picture.isNull() && !picture.hasAlphaChannel();
    for (const QRect &band : QRegion(tile) - (covers ? target : QRect()))
        painter.fillRect(band, Colours::tile());
}

QRectF partOf(const QImage &picture, const PictureZoom &zoom)
{
    const QRectF part = zoom.part();
    return QRectF(part.x() * picture.width(), part.y() * picture.height(),
                  part.width() * picture.width(), part.height() * picture.height());
}

void paintZoomMap(QPainter &painter, const QRect &map, const QImage &picture,
                  const PictureZoom &zoom)
{
    // So much smaller, it would hardly look better smooth; and a zoomed picture costs no more.
    painter.setRenderHint(QPainter::SmoothPixmapTransform, false);
    painter.drawImage(QRectF(map), picture, QRectF(picture.rect()));
    painter.setPen(mapFrame);
    painter.drawRect(map.adjusted(-1, -1, 0, 0));
    const QRectF part = zoomMapPart(map, zoom);
    for (const QRect &rest : QRegion(map) - part.toAlignedRect())
        painter.fillRect(rest, mapShade);
    painter.setPen(selectionPen());
    painter.drawRect(part);
}

} // namespace

TileBorder BorderRule::border() const
{
    if (isDropTarget || (isActive && (playerCount > 1 || cellCount > 1)))
        return TileBorder::Selection;
    return isHovered ? TileBorder::Hover : TileBorder::None;
}

void paintBackground(QPainter &painter, const QRect &tile)
{
    painter.fillRect(tile, Colours::tile());
}

void paintPicture(QPainter &painter, const QRect &tile, const QRect &target, const QImage &frame,
                  int rotation, bool mirror, const PictureZoom &zoom)
{
    const QImage picture = finalPicture(frame, rotation, mirror);
    paintAround(painter, tile, target, picture);
    drawScaled(painter, target, picture, partOf(picture, zoom));
    if (zoom.isZoomed())
        paintZoomMap(painter, zoomMapPlace(tile.size(), target), picture, zoom);
}

void paintMessage(QPainter &painter, const QRect &tile, const QFont &font, const QString &text)
{
    paintBackground(painter, tile);
    painter.setPen(QColor(Qt::white));
    QFont messageFont = font;
    messageFont.setPixelSize(messagePixelSize(tile.size()));
    painter.setFont(messageFont);
    painter.drawText(tile, Qt::AlignCenter | Qt::TextWordWrap, text);
}

void paintDimming(QPainter &painter, const QRect &tile)
{
    painter.fillRect(innerRect(tile), dimming);
}

void paintBorder(QPainter &painter, const QRect &tile, TileBorder border)
{
    if (border == TileBorder::None)
        return;
    painter.setPen(border == TileBorder::Selection ? selectionPen() : hoverPen());
    painter.drawRoundedRect(innerRect(tile), borderRadius, borderRadius);
}

} // namespace Internal
} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
