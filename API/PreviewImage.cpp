// SPDX-License-Identifier: MIT
#include "API/PreviewImage.h"

#include <QBuffer>
#include <QImageReader>

namespace ZorvaneClient {
namespace API {

namespace {
constexpr qint64 maximumPixels = 32LL * 1024 * 1024;
}

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

} // namespace API
} // namespace ZorvaneClient
