// SPDX-License-Identifier: MIT
#include "GUI/Player/ScaledPicture.h"

#include <QImage>
#include <QPaintDevice>
#include <QPainter>
#include <QRectF>

#include <algorithm>

namespace ZorvaneClient {
namespace GUI {
namespace Player {
namespace Internal {

namespace {

/// What a band mixes stays in the fast cache of a core: 64 rows of a picture of 1920 are 480 KiB.
constexpr int bandHeight = 32;
constexpr int cacheLineBytes = 64;

/// Reads the rows that the next band mixes, in the order in which they lie in memory. Another
/// process wrote them, and a wall's pictures together fit in no cache: mixing, which takes pixels
/// from here and there, would wait for each of them, and takes more than twice as long.
void readAhead(const QImage &picture, const QRect &area)
{
    if (area.isEmpty())
        return;
    const volatile uchar *at = picture.constScanLine(area.top());
    const volatile uchar *end = picture.constScanLine(area.bottom()) + picture.bytesPerLine();
    for (; at < end; at += cacheLineBytes)
        static_cast<void>(*at);
}

} // namespace

void drawScaled(QPainter &painter, const QRect &target, const QImage &picture, const QRectF &part)
{
    const QSizeF painted = QSizeF(target.size()) * painter.device()->devicePixelRatioF();
    painter.setRenderHint(QPainter::SmoothPixmapTransform, painted != part.size());
    const qreal rowsEach = part.height() / target.height();
    for (int top = 0; top < target.height(); top += bandHeight) {
        const int height = std::min(bandHeight, target.height() - top);
        const QRectF mixed(part.left(), part.top() + top * rowsEach, part.width(),
                           height * rowsEach);
        readAhead(picture, mixed.toAlignedRect() & picture.rect());
        painter.save();
        painter.setClipRect(QRect(target.left(), target.top() + top, target.width(), height),
                            Qt::IntersectClip);
        painter.drawImage(QRectF(target), picture, part);
        painter.restore();
    }
}

} // namespace Internal
} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
