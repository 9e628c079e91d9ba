// SPDX-License-Identifier: MIT
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QPoint>
#include <QPointer>
#include <QString>
#include <QTimer>
#include <QWidget>

#include <functional>

namespace ZorvaneClient {
namespace Tests {

/// One drag with the pointer of the X display, from the middle of one widget to a place near the
/// middle of another, or of the same. The pointer goes on only when the program has answered its
/// last step, and does so inside the drag's own event loop. Nothing is tried twice.
class MouseDrag : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(MouseDrag)

public:
    MouseDrag(QWidget *source, QWidget *target);

    /// Runs until the drag is over; false if a step stays unanswered. The button is let go once
    /// `target`, be it willing or not, has been asked whether it takes the drag; right before
    /// that, `atTarget` is called.
    bool run(const std::function<void()> &atTarget = {});
    /// The widget that was given the drop, by class name; empty if it was refused.
    QString takenBy() const { return taker; }

protected:
    bool eventFilter(QObject *object, QEvent *event) override;

private:
    enum class Step { Reach, Press, Way, Target, Release, Done, Failed };

    void step();
    void reach();
    void goOn();
    void moveTo(const QPoint &place);
    bool isMoveAnswered() const;
    void fail();

    QPointer<QWidget> source;
    QPointer<QWidget> target;
    std::function<void()> whenAtTarget;
    Step next = Step::Reach;
    QPoint from;
    QPoint to;
    QPoint pointer;
    QPoint pictureBefore;
    int stepsGone = 0;
    bool sawPress = false;
    bool sawMove = false;
    bool sawDrag = false;
    QString taker;
    QTimer clock;
    QElapsedTimer time;
};

} // namespace Tests
} // namespace ZorvaneClient
