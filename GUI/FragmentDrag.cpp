// SPDX-License-Identifier: MIT
#include "GUI/FragmentDrag.h"

#include <cstdlib>

namespace ZorvaneClient {
namespace GUI {
namespace Internal {

namespace {

constexpr int pressMarginLeftPixels = 9;
constexpr int pressMarginRightPixels = 10;
constexpr int snapReachPixels = 6;

} // namespace

QDateTime FragmentDrag::handle() const
{
    return held == FragmentPart::Start ? fragment.start : fragment.end;
}

void FragmentDrag::take(int x, const DayWindow &window)
{
    if (x <= pressMarginLeftPixels || x > window.width - pressMarginRightPixels)
        return;
    held = fragment.partAt(x, window);
    carries = held == FragmentPart::Body;
    if (held != FragmentPart::None)
        anchor = carries ? window.timeAt(x) : handle();
}

void FragmentDrag::moveTo(int x, const DayWindow &window, int labelStep)
{
    if (held == FragmentPart::None)
        return;
    const QDateTime time = qBound(window.dayStart(), window.timeAt(x), window.dayEnd());
    if (time == window.dayStart() || time == window.dayEnd())
        x = window.pixelAt(time);
    if (held == FragmentPart::Body || !pull(time, x, window, labelStep))
        carry(time, window);
}

/// False when a fragment may not be like that.
bool FragmentDrag::pull(const QDateTime &time, int x, const DayWindow &window, int labelStep)
{
    const Fragment pulled = fragment.with(held, time);
    if (!pulled.isAllowed())
        return false;
    const QDateTime near = snapped(time, labelStep);
    const Fragment snappedOne = fragment.with(held, near);
    const bool isNear = std::abs(window.pixelAt(near) - x) <= snapReachPixels;
    fragment = isNear && snappedOne.isAllowed() ? snappedOne : pulled;
    carries = false;
    return true;
}

void FragmentDrag::carry(const QDateTime &time, const DayWindow &window)
{
    if (!carries)
        anchor = handle();
    carries = true;
    fragment.move(anchor.secsTo(time), window);
    anchor = time;
}

} // namespace Internal
} // namespace GUI
} // namespace ZorvaneClient
