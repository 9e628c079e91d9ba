// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Test.h"

#include "tests/support/Roster.h"

class QDrag;
class QLabel;
class QWidget;

namespace ZorvaneClient::Tests {

/// The wall clock stands still at `seconds` after a fixed moment.
void stopClockAt(double seconds);
void runClock();

/// Lets the running timers of that interval expire at once; returns how many there were.
int expireTimers(std::chrono::milliseconds interval);

QString labelText(const QWidget *parent, const char *name);
/// The pixmap of a label, as an image.
QImage labelPicture(const QWidget *parent, const char *name);
QImage resourcePicture(const QString &path);

/// Presses the left button at `from` and moves on to `to`, both in `widget`'s coordinates,
/// and gives the drag that started, if one did. The button stays down.
QDrag *dragFrom(QWidget *widget, const QPoint &from, const QPoint &to);

} // namespace ZorvaneClient::Tests
