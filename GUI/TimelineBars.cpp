// SPDX-License-Identifier: MIT
#include "GUI/TimelineBars.h"

#include <QLinearGradient>
#include <QPainter>

#include "GUI/CoveredColumns.h"
#include "GUI/TimelinePrivate.h"

namespace ZorvaneClient {
namespace GUI {
namespace Internal {

namespace {

const QColor focusTop(128, 132, 141);
const QColor focusBottom(105, 109, 116);
const QColor otherTop(85, 88, 95);
const QColor otherBottom(74, 77, 84);

/// From `top` to above `bottom`.
struct Band {
    int top;
    int bottom;
};
constexpr Band singleCameraBand{26, 42};
constexpr Band activeCameraBand{26, 36};
constexpr Band otherCamerasBand{38, 42};

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

} // namespace

void renderRecords(TimelinePrivate &timeline)
{
    timeline.recordsImage.fill(Qt::transparent);
    QPainter painter(&timeline.recordsImage);
    painter.setPen(Qt::NoPen);

    // Bars of one layer share colours and band and are opaque, so that one drawing of their
    // union looks as if each was drawn.
    const TimeAxis axis = timeline.window().axis();
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

} // namespace Internal
} // namespace GUI
} // namespace ZorvaneClient
