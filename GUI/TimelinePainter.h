// SPDX-License-Identifier: MIT
#pragma once

#include "GUI/DayWindow.h"

class QPainter;

namespace ZorvaneClient {
namespace GUI {
namespace Internal {

struct TimelinePrivate;

/// Draws the strip: the cached bars, the scale, and what lies over them.
class TimelinePainter
{
public:
    explicit TimelinePainter(TimelinePrivate &timeline);

    /// Everything above the widget's background, in the widget's coordinates; fills the
    /// tick plan on the way.
    void paint(QPainter &painter);

private:
    void drawScale(QPainter &painter);
    void drawCursor(QPainter &painter) const;
    void drawMessage(QPainter &painter) const;
    void drawFragment(QPainter &painter) const;
    void drawHoverLine(QPainter &painter) const;

    TimelinePrivate &timeline;
    const DayWindow window;
};

} // namespace Internal
} // namespace GUI
} // namespace ZorvaneClient
