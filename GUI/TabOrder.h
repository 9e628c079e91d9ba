// SPDX-License-Identifier: MIT
#pragma once

#include <QWidgetList>

class QWidget;

namespace ZorvaneClient {
namespace GUI {

/// True for all that can be pressed, typed in or moved.
bool isTabStop(const QWidget *widget);

/// What Tab goes to in these parts of a window, in reading order: all that can be clicked or
/// typed in and is on the screen. A card or a tile is one stop. The focus policies don't count:
/// most buttons have none, so that a click leaves the focus where it is.
QWidgetList tabStops(const QWidgetList &parts);

/// Has all of it in view in the scrolled pages round it.
void scrollTo(QWidget *widget);

/// Moves the focus to the next or the previous stop, round and round, and scrolls it into view.
/// False without a stop.
bool moveFocus(const QWidgetList &stops, bool forward);

} // namespace GUI
} // namespace ZorvaneClient
