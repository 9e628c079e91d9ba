// SPDX-License-Identifier: MIT
#include "GUI/HoverSync.h"

#include <QApplication>
#include <QCursor>
#include <QEnterEvent>
#include <QMouseEvent>
#include <QWindow>

#include <algorithm>
#include <utility>

namespace ZorvaneClient {
namespace GUI {

namespace {

/// The widget that the pointer at `place` acts on; none where a dialog blocks its window.
QWidget *widgetUnder(const QPoint &place)
{
    QWidget *widget = QApplication::widgetAt(place);
    const QWidget *dialog = QApplication::activeModalWidget();
    return widget && dialog && widget->window() != dialog ? nullptr : widget;
}

/// `widget` or one that it is in, up to its window.
bool isOnWayTo(const QWidget *widget, const QWidget *candidate)
{
    while (widget && widget != candidate)
        widget = widget->isWindow() ? nullptr : widget->parentWidget();
    return widget;
}

} // namespace

void enterWindow(QWidget *window, const QPoint &place)
{
    const QPoint inWindow = window->mapFromGlobal(place);
    QEnterEvent enter(inWindow, inWindow, place);
    QCoreApplication::sendEvent(window->windowHandle(), &enter);
}

void leaveWindow(QWidget *window)
{
    QEvent leave(QEvent::Leave);
    QCoreApplication::sendEvent(window->windowHandle(), &leave);
}

HoverSync::HoverSync(QObject *parent) : QObject(parent)
{
    settled.setSingleShot(true);
    settled.setInterval(0);
    connect(&settled, &QTimer::timeout, this, &HoverSync::followPointer);
    qApp->installEventFilter(this);
}

bool HoverSync::eventFilter(QObject *object, QEvent *event)
{
    switch (event->type()) {
    case QEvent::Enter:
    case QEvent::DragEnter:
        if (object->isWidgetType())
            remember(static_cast<QWidget *>(object));
        break;
    case QEvent::Leave:
        entered.removeAll(qobject_cast<QWidget *>(object));
        break;
    case QEvent::Move:
    case QEvent::Resize:
        if (isEntered(object))
            settled.start();
        break;
    case QEvent::Hide:
        if (isEntered(object) || object->isWindowType())
            settled.start();
        break;
    case QEvent::Show:
        // A tip is a window of its own, and lies beside what it belongs to.
        if (object->isWidgetType() && !static_cast<QWidget *>(object)->isWindow() &&
            isEntered(object->parent())) {
            isCountLost = true;
            settled.start();
        }
        break;
    case QEvent::MouseButtonRelease: // a press that closes a popup still holds the button
        settled.start();
        break;
    default:
        break;
    }
    return false;
}

void HoverSync::remember(QWidget *widget)
{
    // An event that somebody made up says nothing about the pointer.
    if (!isEntered(widget) && widget->rect().contains(widget->mapFromGlobal(QCursor::pos())))
        entered.append(widget);
}

bool HoverSync::isEntered(const QObject *object) const
{
    return std::find(entered.begin(), entered.end(), object) != entered.end();
}

void HoverSync::followPointer()
{
    // Their ends come here again; until then the pointer is theirs.
    if (QApplication::activePopupWidget() || QApplication::mouseButtons() != Qt::NoButton)
        return;
    entered.removeAll(nullptr);
    const QPoint place = QCursor::pos();
    const QWidget *under = widgetUnder(place);
    if (entered.isEmpty() || (!std::exchange(isCountLost, false) && agreesWith(under)))
        return;
    const QPointer<QWidget> window = (under ? under : entered.first())->window();
    leaveAllBut(under);
    if (!window || !window->windowHandle())
        return;
    if (!under) {
        leaveWindow(window);
        return;
    }
    enterWindow(window, place);
    // Push buttons are lit by a move only.
    const QPoint inWindow = window->mapFromGlobal(place);
    QMouseEvent move(QEvent::MouseMove, inWindow, inWindow, place, Qt::NoButton, Qt::NoButton,
                     QGuiApplication::keyboardModifiers());
    QCoreApplication::sendEvent(window->windowHandle(), &move);
}

bool HoverSync::agreesWith(const QWidget *under) const
{
    for (const QWidget *widget = under; widget; widget = widget->parentWidget()) {
        if (!widget->underMouse())
            return false;
        if (widget->isWindow())
            break;
    }
    return std::all_of(entered.begin(), entered.end(),
                       [under](const QWidget *widget) { return isOnWayTo(under, widget); });
}

void HoverSync::leaveAllBut(const QWidget *under)
{
    QEvent leave(QEvent::Leave);
    const QVector<QPointer<QWidget>> all = entered;
    for (const QPointer<QWidget> &widget : all) {
        if (!widget || isOnWayTo(under, widget))
            continue;
        QCoreApplication::sendEvent(widget, &leave);
        if (widget)
            widget->update();
    }
}

} // namespace GUI
} // namespace ZorvaneClient
