// SPDX-License-Identifier: MIT
#include "GUI/Player/TilePainter.h"

#include <QPainter>
#include <QPen>
#include <QRectF>
#include <QRegion>
#include <QTransform>

#include "GUI/Player/PictureGeometry.h"

namespace ZorvaneClient {
namespace GUI {
namespace Player {
namespace Internal {

namespace {

constexpr qreal borderWidth = 2.0;
constexpr qreal borderRadius = 1.0;
constexpr int borderInset = 1;

constexpr QColor selectionColor(62, 183, 253, 255);
constexpr QColor hoverColor(66, 71, 80, 255);
constexpr QColor dimming(41, 44, 49, 150);

QPen borderPen(const QColor &color)
{
    return QPen(QBrush(color), borderWidth, Qt::SolidLine, Qt::SquareCap, Qt::BevelJoin);
}

const QPen &selectionPen()
{
    static const QPen pen = borderPen(selectionColor);
    return pen;
}

const QPen &hoverPen()
{
    static const QPen pen = borderPen(hoverColor);
    return pen;
}

QRect innerRect(const QRect &tile)
{
    return tile.adjusted(borderInset, borderInset, -borderInset, -borderInset);
}

/// Fills what of the tile a picture in `target` leaves free. What the picture covers would only
/// be filled in vain, and that takes as long as the picture itself.
void paintAround(QPainter &painter, const QRect &tile, const QRect &target)
{
    for (const QRect &band : QRegion(tile) - target)
        painter.fillRect(band, tileBackground);
}

/// The same pixels without their alpha, as a camera's picture has nothing to show through.
QImage opaque(const QImage &image)
{
    if (image.isNull())
        return image;
    return QImage(image.constBits(), image.width(), image.height(),
                  static_cast<int>(image.bytesPerLine()), QImage::Format_RGB32);
}

QImage oriented(const QImage &image, int rotation, bool mirror)
{
    QTransform transform;
    transform.rotate(rotation, Qt::ZAxis);
    return image.transformed(transform, Qt::FastTransformation).mirrored(mirror, false);
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
    painter.fillRect(tile, tileBackground);
}

void paintPicture(QPainter &painter, const QRect &tile, const QRect &target, const QImage &image,
                  int rotation, bool mirror)
{
    painter.setPen(Qt::NoPen);
    const bool isUpright = rotation == 0 && !mirror;
    paintAround(painter, tile, isUpright && !image.isNull() ? target : QRect());
    const QImage picture = isUpright ? opaque(image) : oriented(image, rotation, mirror);
    painter.drawImage(QRectF(target), picture, QRectF(picture.rect()));
}

void paintMessage(QPainter &painter, const QRect &tile, const QFont &font, const QString &text)
{
    paintBackground(painter, tile);
    painter.save();
    painter.setPen(QColor(Qt::white));
    QFont messageFont = font;
    messageFont.setPixelSize(messagePixelSize(tile.size()));
    painter.setFont(messageFont);
    painter.drawText(tile, Qt::AlignCenter | Qt::TextWordWrap, text);
    painter.restore();
}

void paintDimming(QPainter &painter, const QRect &tile)
{
    painter.fillRect(innerRect(tile), dimming);
}

void paintBorder(QPainter &painter, const QRect &tile, TileBorder border)
{
    if (border == TileBorder::None)
        return;
    painter.setBrush(Qt::NoBrush);
    painter.setPen(border == TileBorder::Selection ? selectionPen() : hoverPen());
    painter.drawRoundedRect(innerRect(tile), borderRadius, borderRadius);
}

} // namespace Internal
} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
