// SPDX-License-Identifier: MIT
#include "GUI/TimelinePainter.h"

#include <QLinearGradient>
#include <QPainter>

#include "API/Camera.h"
#include "GUI/TimelineBars.h"
#include "GUI/TimelinePrivate.h"
#include "GUI/TimelineScale.h"

namespace ZorvaneClient {
namespace GUI {
namespace Internal {

namespace {

const QColor scaleColour(105, 106, 109);
const QColor focusTop(128, 132, 141);
const QColor focusBottom(105, 109, 116);
const QColor otherTop(85, 88, 95);
const QColor otherBottom(74, 77, 84);
const QColor bandColour(62, 183, 253, 127);
const QColor accentColour(62, 183, 253);
const QColor cursorColour(223, 72, 72);

/// From `top` to above `bottom`.
struct Band {
    int top;
    int bottom;
};
constexpr Band singleCameraBand{26, 42};
constexpr Band activeCameraBand{26, 36};
constexpr Band otherCamerasBand{38, 42};

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

QLinearGradient gradientOf(const Band &band, bool inFocus)
{
    QLinearGradient gradient(0, band.top, 0, band.bottom);
    gradient.setColorAt(0.0, inFocus ? focusTop : otherTop);
    gradient.setColorAt(1.0, inFocus ? focusBottom : otherBottom);
    return gradient;
}

Band bandOf(int cameraCount, bool inFocus)
{
    if (cameraCount == 1)
        return singleCameraBand;
    return inFocus ? activeCameraBand : otherCamerasBand;
}

void drawBars(QPainter &painter, const CoveredColumns &columns, const Band &band, bool inFocus)
{
    painter.setBrush(gradientOf(band, inFocus));
    painter.drawRects(columns.bars(band.top, band.bottom));
}

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

TimelinePainter::TimelinePainter(TimelinePrivate &timelineState) : timeline(timelineState)
{
}

void TimelinePainter::renderRecords()
{
    timeline.recordsImage.fill(0);
    QPainter painter(&timeline.recordsImage);
    painter.setPen(Qt::NoPen);

    // Bars of one layer share colours and band and are opaque, so that one drawing of their
    // union looks as if each was drawn.
    const TimeAxis axis(timeline.startValue, timeline.endValue, timeline.width());
    const int count = timeline.cameras.size();
    CoveredColumns all(axis);
    timeline.forgetOldRecords();
    for (const API::CameraPtr &camera : qAsConst(timeline.cameras))
        all.add(timeline.recordTimes.timesOf(camera, timeline.date));
    drawBars(painter, all, bandOf(count, false), false);

    if (const API::CameraPtr camera = timeline.activeCamera()) {
        CoveredColumns active(axis);
        active.add(timeline.recordTimes.timesOf(camera, timeline.date));
        drawBars(painter, active, bandOf(count, true), true);
    }
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
        drawSelection(painter);
    if (timeline.hoverVisible)
        drawHoverLine(painter);
}

void TimelinePainter::drawScale(QPainter &painter)
{
    const QFontMetrics metrics = painter.fontMetrics();
    const ScaleTextWidths texts{sampleWidth(metrics, timeline.timeFormat),
                                metrics.horizontalAdvance(QStringLiteral("00")),
                                metrics.horizontalAdvance(QStringLiteral("00:00"))};
    const TimelineScale scale =
        timelineScale(timeline.startValue, timeline.endValue, timeline.width(), texts);
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
    painter.drawLine(0, 0, timeline.width(), 0);
    painter.restore();
}

void TimelinePainter::drawCursor(QPainter &painter) const
{
    if (timeline.endValue < timeline.currentValue)
        return;
    const int x = timeline.pixelAt(timeline.currentValue);
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
                     QPoint(timeline.width() - 1, timeline.widget->height() - 1 + messageShift));
    painter.setPen(scaleColour);
    painter.drawText(area, Qt::AlignHCenter | Qt::AlignVCenter, timeline.text);
}

void TimelinePainter::drawSelection(QPainter &painter) const
{
    const int left = timeline.pixelAt(qMax(timeline.selectionStart, timeline.startValue));
    int right = timeline.pixelAt(qMin(timeline.selectionEnd, timeline.endValue));
    if (right < left)
        return;
    if (right == left)
        ++right;
    painter.setPen(QPen(bandColour, selectionPenWidth, Qt::SolidLine, Qt::FlatCap));
    painter.drawLine(left, selectionLineY, right, selectionLineY);

    painter.setPen(QPen(accentColour, 1));
    const int height = timeline.widget->height();
    if (timeline.selectionStart >= timeline.startValue) {
        const QSize size = logicalSize(timeline.selectionStartImage);
        painter.drawImage(left - size.width(), height - size.height() + handleOverhang,
                          timeline.selectionStartImage);
        painter.drawLine(left, 0, left, height);
    }
    if (timeline.selectionEnd <= timeline.endValue) {
        const QSize size = logicalSize(timeline.selectionEndImage);
        painter.drawImage(right, height - size.height() + handleOverhang,
                          timeline.selectionEndImage);
        painter.drawLine(right, 0, right, height);
    }
}

void TimelinePainter::drawHoverLine(QPainter &painter) const
{
    const int x = timeline.pixelAt(timeline.hoverTime);
    painter.setPen(accentColour);
    painter.setBrush(accentColour);
    painter.drawLine(x, lineTop, x, timeline.widget->height());
}

} // namespace Internal
} // namespace GUI
} // namespace ZorvaneClient
