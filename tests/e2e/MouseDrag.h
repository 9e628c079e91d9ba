// SPDX-License-Identifier: MIT
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QPoint>
#include <QString>
#include <QTimer>

#include <functional>

namespace ZorvaneClient {
namespace Tests {

/// Moves the pointer of the X display to a place on the screen.
bool movePointer(const QPoint &place);

/// One drag with the real pointer of the X display: press, way, release. Each step waits for
/// what the program made of the one before, and goes on inside the drag's own event loop.
class MouseDrag : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(MouseDrag)

public:
    /// Places on the screen.
    MouseDrag(const QPoint &from, const QPoint &to);

    /// Runs until the drag is over; false if a step was not answered in time. `over` is called
    /// with the button still down, once the program knows that the drag is at its goal.
    bool run(const std::function<void()> &over = {});
    /// The widget that took the drop, by class name; empty if it was refused.
    QString takenBy() const;

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    enum class Step { Press, Way, Goal, End, Done, Failed };

    void step();
    void fail();
    QPoint wayPoint() const;

    QPoint from;
    QPoint to;
    std::function<void()> whenOver;
    Step next = Step::Press;
    int wayDone = 0;
    int wiggle = 0;
    bool pressSeen = false;
    bool goalSeen = false;
    QString taker;
    QTimer clock;
    QElapsedTimer time;
};

} // namespace Tests
} // namespace ZorvaneClient
