// SPDX-License-Identifier: MIT
#pragma once

class QPainter;

namespace ZorvaneClient {
namespace GUI {
namespace Internal {

struct TimelinePrivate;

/// Draws the strip. The bars of the records go through a cached image, so that what follows
/// the mouse stays cheap whatever the number of records.
class TimelinePainter
{
public:
    explicit TimelinePainter(TimelinePrivate &timeline);

    /// Draws the bars of all cameras into `recordsImage`, on which it was `dirty`.
    void renderRecords();
    /// Everything above the widget's background, in the widget's coordinates; fills the
    /// tick plan on the way.
    void paint(QPainter &painter);

private:
    void drawScale(QPainter &painter);
    void drawCursor(QPainter &painter) const;
    void drawMessage(QPainter &painter) const;
    void drawSelection(QPainter &painter) const;
    void drawHoverLine(QPainter &painter) const;

    TimelinePrivate &timeline;
};

} // namespace Internal
} // namespace GUI
} // namespace ZorvaneClient
