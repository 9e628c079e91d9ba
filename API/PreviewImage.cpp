// SPDX-License-Identifier: MIT
#include "API/PreviewImage.h"

#include <QBuffer>
#include <QImageReader>
#include <QTransform>

namespace ZorvaneClient {
namespace API {

namespace {

constexpr qint64 maximumPixels = 32LL * 1024 * 1024;
constexpr int fullTurnDegrees = 360;

} // namespace

QPixmap decodePreview(const QByteArray &bytes, const char *format)
{
    QBuffer buffer;
    buffer.setData(bytes);
    buffer.open(QIODevice::ReadOnly);
    const QSize size = QImageReader(&buffer, format).size();
    if (size.isValid() && qint64(size.width()) * size.height() > maximumPixels)
        return QPixmap();
    QPixmap pixmap;
    pixmap.loadFromData(bytes, format);
    return pixmap;
}

QPixmap orientedPreview(const QPixmap &preview, int rotation, bool mirror)
{
    QTransform transform;
    transform.scale(mirror ? -1.0 : 1.0, 1.0);
    // Past a full turn a right angle is no longer exact, and the picture a line of pixels larger.
    transform.rotate(rotation % fullTurnDegrees, Qt::ZAxis);
    return preview.transformed(transform, Qt::FastTransformation);
}

} // namespace API
} // namespace ZorvaneClient
