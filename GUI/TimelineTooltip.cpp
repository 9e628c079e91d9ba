// SPDX-License-Identifier: MIT
#include "GUI/TimelineTooltip.h"

#include <QFont>
#include <QFontMetrics>
#include <QPainter>

#include "GUI/BubbleMask.h"
#include "GUI/Colours.h"
#include "GUI/HouseStyle.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

constexpr int fontPixelSize = 12;
constexpr int extraWidth = 10;
constexpr int extraHeight = 4;
constexpr int margin = 1;
constexpr int pointerHeight = 4;
constexpr int pointerHalfWidth = 3;
constexpr qreal cornerRadius = 8;

const QFont &labelFont()
{
    static const QFont font = [] {
        QFont label(fontFamily);
        label.setPixelSize(fontPixelSize);
        return label;
    }();
    return font;
}

QString textOf(QTime time)
{
    return time.toString(QStringLiteral("hh:mm:ss"));
}

} // namespace

TimelineTooltip::TimelineTooltip()
    : QWidget(nullptr, Qt::ToolTip | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint)
{
    // It lies over the strip's upper edge, where it would take the mouse away and be hidden for it.
    setWindowFlag(Qt::WindowTransparentForInput);
    setAttribute(Qt::WA_TranslucentBackground);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAutoFillBackground(false);
    setFocusPolicy(Qt::NoFocus);
    const QFontMetrics metrics(labelFont());
    setFixedSize(metrics.horizontalAdvance(textOf(QTime(12, 0))) + extraWidth,
                 metrics.height() + extraHeight);
    cutToPainting(this);
}

void TimelineTooltip::setTime(QTime newTime)
{
    time = newTime;
    update();
}

void TimelineTooltip::paintEvent(QPaintEvent *)
{
    const int w = width();
    const int h = height();
    QPainter painter(this);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setPen(Colours::accent());
    painter.setBrush(Colours::accent());
    const QPoint pointer[] = {{w / 2, h},
                              {w / 2 - pointerHalfWidth, h - pointerHeight},
                              {w / 2 + pointerHalfWidth, h - pointerHeight}};
    painter.drawPolygon(pointer, static_cast<int>(std::size(pointer)));
    const int bubbleHeight = h - pointerHeight - margin;
    painter.drawRoundedRect(QRectF(margin, margin, w - 2 * margin, bubbleHeight), cornerRadius,
                            cornerRadius);

    painter.setFont(labelFont());
    painter.setPen(Qt::white);
    painter.drawText(QRect(margin, 0, w - 2 * margin, bubbleHeight),
                     Qt::AlignHCenter | Qt::AlignVCenter, textOf(time));
}

} // namespace GUI
} // namespace ZorvaneClient
