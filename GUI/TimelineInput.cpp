// SPDX-License-Identifier: MIT
// What the mouse does on the strip.
#include "GUI/Timeline.h"

#include <QDebug>
#include <QMouseEvent>
#include <QWheelEvent>

#include <chrono>
#include <cmath>
#include <cstdlib>

#include "App/Environment.h"
#include "App/QtShims.h"
#include "GUI/TimelinePrivate.h"
#include "GUI/TimelineTooltip.h"

namespace ZorvaneClient {
namespace GUI {

using Internal::FragmentPart;

namespace {

using namespace std::chrono_literals;

constexpr int panPixels = 4;
constexpr std::chrono::milliseconds longestClick = 332ms;
constexpr int tooltipTop = -8;

int pixel(double position)
{
    return static_cast<int>(std::lround(position));
}

/// A sideways swipe, or a touchpad that tells of fingers put on or taken off.
bool isWithoutTurn(const QWheelEvent &event)
{
    return event.angleDelta().y() == 0 &&
           (event.angleDelta().x() != 0 || event.phase() != Qt::NoScrollPhase);
}

} // namespace

void Timeline::mousePressEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    const int x = pixel(localPosition(*event).x());
    if (d->selectionMode && d->overSelection) {
        d->startFragmentDrag(x);
        return;
    }
    d->pressX = x;
    d->lastX = x;
    d->pressed = true;
    d->pressTime = App::Environment::now();
}

void Timeline::mouseReleaseEvent(QMouseEvent *event)
{
    if (event->button() != Qt::LeftButton)
        return;
    const bool wasPressed = d->pressed;
    d->pressed = false;
    if (d->isDraggingFragment()) {
        d->stopFragmentDrag();
        return;
    }
    const bool isPan = std::abs(d->lastX - d->pressX) >= panPixels;
    const qint64 heldMs = d->pressTime.msecsTo(App::Environment::now());
    if (!wasPressed || isPan || heldMs > longestClick.count())
        return;
    const int x = pixel(localPosition(*event).x());
    if (!d->window().isOnScale(x))
        return;
    d->currentValue = d->window().timeAt(x);
    update();
    qDebug() << "current time:" << d->currentValue;
    emit playTime(d->currentValue);
}

void Timeline::mouseMoveEvent(QMouseEvent *event)
{
    const int x = pixel(localPosition(*event).x());
    d->hoverVisible = false;
    updateCursor(x, event->buttons().testFlag(Qt::LeftButton));
    if (d->selectionMode && d->isDraggingFragment()) {
        d->dragFragment(x);
    } else if (d->pressed && d->pan(x)) {
        redrawRecords();
    }
    if (d->window().isOnScale(x))
        showHover(x);
    update();
    event->accept();
}

void Timeline::showHover(int x)
{
    d->hoverVisible = true;
    d->hoverTime = d->window().timeAt(x);
    d->tooltip->setTime(d->hoverTime.time());
    d->tooltip->move(mapToGlobal(QPoint(x - d->tooltip->width() / 2 - 1, tooltipTop)));
    d->tooltip->show();
}

void Timeline::updateCursor(int x, bool leftHeld)
{
    const Internal::DayWindow shown = d->window();
    const FragmentPart part =
        d->selectionMode ? d->fragment().partAt(x, shown) : FragmentPart::None;
    d->overSelection = part != FragmentPart::None;
    const QDateTime time = shown.timeAt(x);
    if (part == FragmentPart::Body)
        setCursor(leftHeld ? Qt::ClosedHandCursor : Qt::OpenHandCursor);
    else if (d->overSelection)
        setCursor(Qt::SplitHCursor);
    else if (time < shown.start || shown.end < time)
        setCursor(Qt::ArrowCursor);
    else
        setCursor(leftHeld ? Qt::ClosedHandCursor : Qt::PointingHandCursor);
}

void Timeline::wheelEvent(QWheelEvent *event)
{
    event->accept();
    if (isWithoutTurn(*event))
        return;
    const int delta = event->angleDelta().y();
    const int x = pixel(event->position().x());
    if (event->modifiers() == Qt::ControlModifier) {
        d->scrollBy(delta);
        redrawRecords();
        updateCursor(x, false);
    } else {
        zoomByWheel(delta / Internal::wheelNotch, x);
    }
    update();
}

void Timeline::zoomByWheel(int steps, int x)
{
    if (!d->zoomStep(steps, d->window().zoomCenterAt(x)))
        return;
    redrawRecords();
    updateCursor(x, false);
    emit zoomed(d->zoomLevel);
}

void Timeline::leaveEvent(QEvent *)
{
    d->hoverVisible = false;
    d->tooltip->hide();
    update();
}

void Timeline::contextMenuEvent(QContextMenuEvent *)
{
    // None, nor that of a widget behind the strip.
}

} // namespace GUI
} // namespace ZorvaneClient
