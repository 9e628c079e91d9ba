// SPDX-License-Identifier: MIT
#pragma once

#include <QList>
#include <QRect>

namespace ZorvaneClient {
namespace App {

constexpr int noScreen = -1;

/// Number of the first screen that none of `windows` is on; noScreen when each has one. A window
/// is on the screen that holds its largest part, on the first of several equal ones, or on none.
/// A desktop of a single screen has none to choose. All rectangles in desktop coordinates.
int freeScreen(const QList<QRect> &windows, const QList<QRect> &screens);

/// Where a window opens that another one, at `source`, asked for: a little right and down of it.
/// Beside one that fills its screen only what is left of the screen's free area is taken.
QRect cascaded(const QRect &source, bool fillsScreen, const QRect &freeArea);

} // namespace App
} // namespace ZorvaneClient
