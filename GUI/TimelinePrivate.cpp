// SPDX-License-Identifier: MIT
#include "GUI/TimelinePrivate.h"

#include <algorithm>

#include "API/Camera.h"
#include "App/Environment.h"
#include "GUI/IconPixmap.h"
#include "GUI/TimelineTooltip.h"

namespace ZorvaneClient {
namespace GUI {
namespace Internal {

TimelinePrivate::TimelinePrivate(Timeline *owner, QDate day)
    : currentValue(App::Environment::now())
    , date(day)
    , startValue(firstSecond(day))
    , endValue(lastSecond(day))
    , selectionStart(startValue)
    , selectionEnd(startValue)
    , selectionAnchor(startValue)
    , widget(owner)
    , recordsImage(owner->size(), QImage::Format_ARGB32)
    , selectionStartImage(iconPixmap(QStringLiteral(":icons/selection-start.png")).toImage())
    , selectionEndImage(iconPixmap(QStringLiteral(":icons/selection-end.png")).toImage())
    , footerImage(QStringLiteral(":icons/timeline_footer.png"))
    , tooltip(new TimelineTooltip)
{
    recordsImage.fill(Qt::transparent);
}

TimelinePrivate::~TimelinePrivate()
{
    delete tooltip;
}

DayWindow TimelinePrivate::window() const
{
    return {date, startValue, endValue, widget->width()};
}

bool TimelinePrivate::setWindow(const DayWindow &window)
{
    const bool moves = window.start != startValue || window.end != endValue;
    startValue = window.start;
    endValue = window.end;
    return moves;
}

void TimelinePrivate::clampWindow()
{
    DayWindow clamped = window();
    clamped.clamp();
    setWindow(clamped);
}

bool TimelinePrivate::zoomStep(int direction, const QDateTime &center)
{
    DayWindow zoomed = window();
    zoomLevel = zoomed.zoom(direction, center);
    return setWindow(zoomed);
}

void TimelinePrivate::scrollBy(int delta)
{
    DayWindow scrolled = window();
    scrolled.scroll(delta);
    setWindow(scrolled);
}

bool TimelinePrivate::pan(int x)
{
    DayWindow panned = window();
    panned.pan(lastX, x);
    lastX = x;
    return setWindow(panned);
}

API::CameraPtr TimelinePrivate::activeCamera() const
{
    return cameras.value(activeCameraId);
}

bool TimelinePrivate::canExport() const
{
    const API::CameraPtr camera = activeCamera();
    return camera && camera->kind() == API::LocalCamera && camera->hasRecords(currentValue.date());
}

bool TimelinePrivate::hasVisibleRecords() const
{
    return hasRecordsOn(currentValue.date());
}

bool TimelinePrivate::hasRecordsOn(QDate day) const
{
    return std::any_of(cameras.begin(), cameras.end(), [day](const API::CameraPtr &camera) {
        return camera->isArchiveShared() && camera->hasRecords(day);
    });
}

} // namespace Internal
} // namespace GUI
} // namespace ZorvaneClient
