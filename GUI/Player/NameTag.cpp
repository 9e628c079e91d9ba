// SPDX-License-Identifier: MIT
#include "GUI/Player/NameTag.h"

#include <QFont>
#include <QFontMetrics>
#include <QPaintDevice>
#include <QPainter>
#include <QRect>

namespace ZorvaneClient {
namespace GUI {
namespace Player {
namespace Internal {

namespace {

// The name begins at the same place as in the bar.
constexpr QPoint corner(4, 6);
constexpr int heightPixels = 20;
constexpr int paddingPixels = 6;
constexpr int textPixels = 12;
constexpr qreal cornerRadius = 3.0;
constexpr QColor backdrop(0, 0, 0, 170);

QPixmap drawn(QFont font, const QString &name, const QString &state, int tileWidth, qreal scale)
{
    font.setPixelSize(textPixels);
    const QFontMetrics metrics(font);
    const QString tail = QStringLiteral(" · ") + state;
    const int room = tileWidth - 2 * corner.x() - 2 * paddingPixels;
    const QString text =
        metrics.elidedText(name, Qt::ElideRight, room - metrics.horizontalAdvance(tail)) + tail;
    const QRect area(0, 0, metrics.horizontalAdvance(text) + 2 * paddingPixels, heightPixels);

    QPixmap label(area.size() * scale);
    label.setDevicePixelRatio(scale);
    label.fill(Qt::transparent);
    QPainter painter(&label);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setFont(font);
    painter.setPen(Qt::NoPen);
    painter.setBrush(backdrop);
    painter.drawRoundedRect(area, cornerRadius, cornerRadius);
    painter.setPen(Qt::white);
    painter.drawText(area, Qt::AlignCenter, text);
    return label;
}

} // namespace

void NameTag::paint(QPainter &painter, const QRect &tile, const QFont &font, const QString &name,
                    const QString &state)
{
    const qreal scale = painter.device()->devicePixelRatioF();
    const Look wanted(name, state, tile.width(), scale);
    if (look != wanted) {
        look = wanted;
        label = drawn(font, name, state, tile.width(), scale);
    }
    painter.drawPixmap(tile.topLeft() + corner, label);
}

} // namespace Internal
} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
