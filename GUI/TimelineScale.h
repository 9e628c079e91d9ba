// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QString>

#include "GUI/DayWindow.h"

namespace ZorvaneClient {
namespace GUI {
namespace Internal {

/// Which ticks stand how close and are long, medium or short. "Every n" counts ticks from a
/// full hour.
struct TickPlan {
    int labelStep = 0;   ///< seconds; a class for label format and snapping, not a distance
    int majorEvery = 0;  ///< long
    int mediumEvery = 0; ///< medium; 0: all that are not long
    int minorEvery = 0;  ///< short, the others have no height; 0 or -1: all
    int labelEvery = 0;
    int ticksPerHour = 0;
};

/// The plan for a window of `hours` in which `room` labels fit beside each other.
TickPlan tickPlan(int room, double hours);
/// Height in pixels of tick number `index`.
int tickHeight(const TickPlan &plan, qint64 index);

struct ScaleTick {
    int x = 0;
    int height = 0;
    QString label; ///< null for a tick without
};

/// Widths in pixels of texts in the strip's font.
struct ScaleTextWidths {
    int sample = 0; ///< of a label with the space that it needs
    int hour = 0;
    int minute = 0;
};

/// What is to be drawn along the upper edge.
struct TimelineScale {
    TickPlan plan;
    int labelWidth = 0; ///< of each label, whatever its text
    QList<ScaleTick> ticks;
};

TimelineScale timelineScale(const DayWindow &window, const ScaleTextWidths &texts);

} // namespace Internal
} // namespace GUI
} // namespace ZorvaneClient
