// SPDX-License-Identifier: MIT
#include "GUI/TimelinePainter.h"

#include <QPainter>

#include "GUI/Colours.h"
#include "GUI/TimelinePrivate.h"
#include "GUI/TimelineScale.h"

namespace ZorvaneClient {
namespace GUI {
namespace Internal {

namespace {

const QColor scaleColour(105, 106, 109);
const QColor bandColour = Colours::accent(127);
const QColor cursorColour(223, 72, 72);

constexpr qreal tickWidth = 0.9;
constexpr int labelBaseline = 18;
constexpr int labelPointSize = 9;
constexpr int unknownSampleWidth = 20;
constexpr int lineTop = 4; ///< of cursor and hover line
constexpr int cursorHeadBottom = 9;
constexpr int cursorHeadHalfWidth = 3;
constexpr int messageShift = 5; ///< keeps the text below the ticks
constexpr int selectionPenWidth = 40;
constexpr int selectionLineY = 18;
constexpr int handleOverhang = 2;

int sampleWidth(const QFontMetrics &metrics, Timeline::TimeFormat format)
{
    switch (format) {
    case Timeline::Full:
        return metrics.horizontalAdvance(QStringLiteral(" 00:00 "));
    case Timeline::HourOnly:
        return metrics.horizontalAdvance(QStringLiteral("00"));
    }
    return unknownSampleWidth;
}

QSize logicalSize(const QImage &image)
{
    return image.size() / image.devicePixelRatio();
}

} // namespace

TimelinePainter::TimelinePainter(TimelinePrivate &timelineState)
    : timeline(timelineState), window(timelineState.window())
{
}

void TimelinePainter::paint(QPainter &painter)
{
    painter.setRenderHint(QPainter::Antialiasing);
    painter.drawImage(0, 0, timeline.recordsImage);
    drawScale(painter);
    if (timeline.sliderVisible)
        drawCursor(painter);
    if (timeline.textVisible && !timeline.hasVisibleRecords())
        drawMessage(painter);
    if (timeline.selectionMode)
        drawFragment(painter);
    if (timeline.hoverVisible)
        drawHoverLine(painter);
}

void TimelinePainter::drawScale(QPainter &painter)
{
    const QFontMetrics metrics = painter.fontMetrics();
    const ScaleTextWidths texts{sampleWidth(metrics, timeline.timeFormat),
                                metrics.horizontalAdvance(QStringLiteral("00")),
                                metrics.horizontalAdvance(QStringLiteral("00:00"))};
    const TimelineScale scale = timelineScale(window, texts);
    timeline.labelStep = scale.plan.labelStep;
    timeline.majorEvery = scale.plan.majorEvery;
    timeline.mediumEvery = scale.plan.mediumEvery;
    timeline.minorEvery = scale.plan.minorEvery;
    timeline.labelEvery = scale.plan.labelEvery;
    timeline.ticksPerHour = scale.plan.ticksPerHour;

    painter.save();
    QPen tickPen(scaleColour);
    tickPen.setWidthF(tickWidth);
    painter.setPen(tickPen);
    for (const ScaleTick &tick : scale.ticks) {
        if (tick.height > 0)
            painter.drawLine(tick.x, 0, tick.x, tick.height);
    }

    QFont labelFont = timeline.widget->font();
    labelFont.setPointSize(labelPointSize);
    painter.setFont(labelFont);
    painter.setPen(QPen(scaleColour, 1));
    for (const ScaleTick &tick : scale.ticks) {
        if (!tick.label.isNull())
            painter.drawText(tick.x - scale.labelWidth / 2, labelBaseline, tick.label);
    }
    painter.drawLine(0, 0, window.width, 0);
    painter.restore();
}

void TimelinePainter::drawCursor(QPainter &painter) const
{
    if (window.end < timeline.currentValue)
        return;
    const int x = window.pixelAt(timeline.currentValue);
    const QPoint head[] = {{x, cursorHeadBottom},
                           {x + cursorHeadHalfWidth, lineTop},
                           {x - cursorHeadHalfWidth, lineTop}};
    painter.setPen(cursorColour);
    painter.setBrush(cursorColour);
    painter.drawLine(x, lineTop, x, timeline.widget->height());
    painter.drawPolygon(head, static_cast<int>(std::size(head)));
}

void TimelinePainter::drawMessage(QPainter &painter) const
{
    const QRect area(QPoint(0, messageShift),
                     QPoint(window.width - 1, timeline.widget->height() - 1 + messageShift));
    painter.setPen(scaleColour);
    painter.drawText(area, Qt::AlignHCenter | Qt::AlignVCenter, timeline.text);
}

void TimelinePainter::drawFragment(QPainter &painter) const
{
    const int left = window.pixelAt(qMax(timeline.selectionStart, window.start));
    int right = window.pixelAt(qMin(timeline.selectionEnd, window.end));
    if (right < left)
        return;
    if (right == left)
        ++right;
    painter.setPen(QPen(bandColour, selectionPenWidth, Qt::SolidLine, Qt::FlatCap));
    painter.drawLine(left, selectionLineY, right, selectionLineY);

    painter.setPen(QPen(Colours::accent(), 1));
    const int height = timeline.widget->height();
    if (timeline.selectionStart >= window.start) {
        const QSize size = logicalSize(timeline.selectionStartImage);
        painter.drawImage(left - size.width(), height - size.height() + handleOverhang,
                          timeline.selectionStartImage);
        painter.drawLine(left, 0, left, height);
    }
    if (timeline.selectionEnd <= window.end) {
        const QSize size = logicalSize(timeline.selectionEndImage);
        painter.drawImage(right, height - size.height() + handleOverhang,
                          timeline.selectionEndImage);
        painter.drawLine(right, 0, right, height);
    }
}

void TimelinePainter::drawHoverLine(QPainter &painter) const
{
    const int x = window.pixelAt(timeline.hoverTime);
    painter.setPen(Colours::accent());
    painter.setBrush(Colours::accent());
    painter.drawLine(x, lineTop, x, timeline.widget->height());
}

} // namespace Internal
} // namespace GUI
} // namespace ZorvaneClient
