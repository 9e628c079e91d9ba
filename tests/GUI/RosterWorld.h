// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Test.h"

#include "tests/support/FakeTime.h"
#include "tests/support/Roster.h"
#include "tests/support/ScriptedService.h"

namespace ZorvaneClient::Tests {

/// The wall clock stands still at `seconds` after a fixed moment.
void stopClockAt(double seconds);

/// After which the preview of a card out of view is released.
constexpr std::chrono::milliseconds releaseDelay(30000);

/// The part of the widget that holds all pixels of that colour.
QRect placeOf(const QColor &colour, QWidget *widget);

/// The text of a label, with what is painted as marked in it in brackets.
QString labelText(const QWidget *parent, const char *name);

/// Moves on to `to` with the left button down, and gives the drag that started, if one did.
QDrag *dragTo(QWidget *widget, const QPoint &to);

/// A test whose clock stands, with a service that fails unless it is told otherwise.
class RosterTest : public QObject
{
    Q_OBJECT

protected:
    ScriptedService service;

private slots:
    void initTestCase() { QVERIFY(service.start()); }
    void init();
    void cleanup();
};

} // namespace ZorvaneClient::Tests
