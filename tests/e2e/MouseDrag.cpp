// SPDX-License-Identifier: MIT
#include "tests/e2e/MouseDrag.h"

#include <QApplication>
#include <QProcess>
#include <QWidget>
#include <QWindow>
#include <QtTest>

#include <algorithm>

namespace ZorvaneClient {
namespace Tests {

namespace {

constexpr int stepIntervalMs = 15;
constexpr int wayPoints = 12;
constexpr int dragDeadlineMs = 20000;

bool xdotool(const QStringList &arguments)
{
    return QProcess::execute(QStringLiteral("xdotool"), arguments) == 0;
}

/// While a drag is on, its picture follows the pointer in a window of Qt's own.
bool isDragOn()
{
    const QWindowList windows = QGuiApplication::allWindows();
    return std::any_of(windows.begin(), windows.end(), [](const QWindow *window) {
        return window->inherits("QShapedPixmapWindow") && window->isVisible();
    });
}

} // namespace

bool movePointer(const QPoint &place)
{
    return xdotool(
        {QStringLiteral("mousemove"), QString::number(place.x()), QString::number(place.y())});
}

MouseDrag::MouseDrag(const QPoint &fromPlace, const QPoint &toPlace) : from(fromPlace), to(toPlace)
{
    connect(&clock, &QTimer::timeout, this, &MouseDrag::step);
}

QString MouseDrag::takenBy() const
{
    return taker;
}

bool MouseDrag::run(const std::function<void()> &over)
{
    whenOver = over;
    qApp->installEventFilter(this);
    time.start();
    clock.start(stepIntervalMs);
    // The drag's own loop runs inside this one, so that step() looks after the deadline.
    const bool ended = QTest::qWaitFor(
        [this] { return next == Step::Done || next == Step::Failed; }, 2 * dragDeadlineMs);
    clock.stop();
    qApp->removeEventFilter(this);
    return ended && next == Step::Done;
}

QPoint MouseDrag::wayPoint() const
{
    return from + (to - from) * wayDone / wayPoints;
}

void MouseDrag::fail()
{
    qWarning("The drag from %d,%d to %d,%d stopped at step %d: press %s, goal %s, drag %s",
             from.x(), from.y(), to.x(), to.y(), static_cast<int>(next),
             pressSeen ? "seen" : "missing", goalSeen ? "seen" : "missing",
             isDragOn() ? "on" : "off");
    next = Step::Failed;
    xdotool({QStringLiteral("mouseup"), QStringLiteral("1")});
}

void MouseDrag::step()
{
    if (next != Step::Failed && time.hasExpired(dragDeadlineMs))
        fail();
    switch (next) {
    case Step::Press:
        movePointer(from);
        xdotool({QStringLiteral("mousedown"), QStringLiteral("1")});
        next = Step::Way;
        break;
    case Step::Way:
        if (!pressSeen)
            break;
        ++wayDone;
        movePointer(wayPoint());
        if (wayDone == wayPoints)
            next = Step::Goal;
        break;
    case Step::Goal:
        // The program learns where the drag is from moves alone.
        wiggle = 1 - wiggle;
        movePointer(to + QPoint(wiggle, 0));
        if (!goalSeen || !isDragOn())
            break;
        next = Step::End;
        if (whenOver)
            whenOver();
        xdotool({QStringLiteral("mouseup"), QStringLiteral("1")});
        break;
    case Step::End:
        if (!isDragOn() && QApplication::mouseButtons() == Qt::NoButton)
            next = Step::Done;
        break;
    case Step::Done:
    case Step::Failed:
        break;
    }
}

bool MouseDrag::eventFilter(QObject *object, QEvent *event)
{
    auto *widget = qobject_cast<QWidget *>(object);
    if (!widget)
        return false;
    switch (event->type()) {
    case QEvent::MouseButtonPress:
        pressSeen = true;
        break;
    case QEvent::DragEnter:
    case QEvent::DragMove:
        goalSeen = goalSeen || widget->rect().contains(widget->mapFromGlobal(to));
        break;
    case QEvent::Drop:
        taker = QString::fromLatin1(widget->metaObject()->className());
        break;
    default:
        break;
    }
    return false;
}

} // namespace Tests
} // namespace ZorvaneClient
