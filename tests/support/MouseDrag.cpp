// SPDX-License-Identifier: MIT
#include "tests/support/MouseDrag.h"

#include <QApplication>
#include <QCursor>
#include <QDrag>
#include <QProcess>
#include <QWindow>
#include <QtTest>

namespace ZorvaneClient {
namespace Tests {

namespace {

constexpr int lookIntervalMs = 10;
constexpr int wholeWaySteps = 12;
constexpr int deadlineMs = 40000;
constexpr QPoint besideTheMiddle(30, 20);
const QString leftButton = QStringLiteral("1");

void xdotool(const QStringList &arguments)
{
    if (QProcess::execute(QStringLiteral("xdotool"), arguments) != 0)
        qWarning("xdotool %s failed", qPrintable(arguments.join(QLatin1Char(' '))));
}

/// The window of Qt's own that follows the pointer as long as a drag is on.
QWindow *dragPicture()
{
    const QWindowList windows = QGuiApplication::allWindows();
    for (QWindow *window : windows) {
        if (window->inherits("QShapedPixmapWindow") && window->isVisible())
            return window;
    }
    return nullptr;
}

bool isPartOf(const QWidget *whole, const QObject *object)
{
    const auto *widget = qobject_cast<const QWidget *>(object);
    return widget && whole && (widget == whole || whole->isAncestorOf(widget));
}

QPoint middleOf(const QWidget *widget)
{
    return widget->mapToGlobal(widget->rect().center());
}

} // namespace

MouseDrag::MouseDrag(QWidget *sourceWidget, QWidget *targetWidget)
    : source(sourceWidget), target(targetWidget)
{
    connect(&clock, &QTimer::timeout, this, &MouseDrag::step);
}

bool MouseDrag::run(const std::function<void()> &atTarget)
{
    whenAtTarget = atTarget;
    qApp->installEventFilter(this);
    time.start();
    clock.start(lookIntervalMs);
    // Looked at outside the drag's own loop only, so the source has come back from it.
    const bool ended = QTest::qWaitFor(
        [this] { return next == Step::Done || next == Step::Failed; }, 2 * deadlineMs);
    clock.stop();
    qApp->removeEventFilter(this);
    return ended && next == Step::Done;
}

void MouseDrag::step()
{
    if (next == Step::Done || next == Step::Failed)
        return;
    if (time.hasExpired(deadlineMs)) {
        fail();
        return;
    }
    switch (next) {
    case Step::Reach:
        reach();
        break;
    case Step::Press:
        if (sawPress)
            next = Step::Way;
        break;
    case Step::Way:
        goOn();
        break;
    case Step::Target:
        if (!sawDrag)
            break;
        if (whenAtTarget)
            whenAtTarget();
        next = Step::Release;
        xdotool({QStringLiteral("mouseup"), leftButton});
        break;
    case Step::Release:
        if (!dragPicture() && QApplication::mouseButtons() == Qt::NoButton)
            next = Step::Done;
        break;
    case Step::Done:
    case Step::Failed:
        break;
    }
}

/// Presses once the source has come to rest under the pointer.
void MouseDrag::reach()
{
    const QPoint place = middleOf(source);
    if (place != from || QCursor::pos() != place) {
        from = place;
        moveTo(from);
        return;
    }
    if (!source->underMouse() || !isPartOf(source, QApplication::widgetAt(place)))
        return;
    next = Step::Press;
    xdotool({QStringLiteral("mousedown"), leftButton});
}

void MouseDrag::goOn()
{
    if (stepsGone > 0 && !isMoveAnswered())
        return;
    if (stepsGone == wholeWaySteps) {
        if (dragPicture() && pointer == to)
            next = Step::Target;
        return;
    }
    ++stepsGone;
    to = middleOf(target) + besideTheMiddle;
    moveTo(from + (to - from) * stepsGone / wholeWaySteps);
}

void MouseDrag::moveTo(const QPoint &place)
{
    sawMove = false;
    if (const QWindow *picture = dragPicture())
        pictureBefore = picture->position();
    pointer = place;
    xdotool({QStringLiteral("mousemove"), QString::number(place.x()), QString::number(place.y())});
}

/// A drag that is on takes the pointer's moves for itself.
bool MouseDrag::isMoveAnswered() const
{
    const QWindow *picture = dragPicture();
    return sawMove || (picture && picture->position() != pictureBefore);
}

void MouseDrag::fail()
{
    qWarning("The drag from %d,%d to %d,%d stopped in state %d at %d,%d after %d steps: press %s, "
             "move %s, picture %s, target %s",
             from.x(), from.y(), to.x(), to.y(), static_cast<int>(next), QCursor::pos().x(),
             QCursor::pos().y(), stepsGone, sawPress ? "seen" : "missing",
             sawMove ? "seen" : "missing", dragPicture() ? "there" : "missing",
             sawDrag ? "asked" : "not asked");
    next = Step::Failed;
    xdotool({QStringLiteral("mouseup"), leftButton});
    QDrag::cancel();
}

bool MouseDrag::eventFilter(QObject *object, QEvent *event)
{
    switch (event->type()) {
    case QEvent::MouseButtonPress:
        sawPress = sawPress || isPartOf(source, object);
        break;
    case QEvent::MouseMove:
        sawMove = sawMove || isPartOf(source, object);
        break;
    case QEvent::DragEnter:
    case QEvent::DragMove:
        sawDrag = sawDrag || object == target;
        break;
    case QEvent::DragLeave:
        sawDrag = sawDrag && object != target;
        break;
    case QEvent::Drop:
        if (object->isWidgetType())
            taker = QString::fromLatin1(object->metaObject()->className());
        break;
    default:
        break;
    }
    return false;
}

} // namespace Tests
} // namespace ZorvaneClient
