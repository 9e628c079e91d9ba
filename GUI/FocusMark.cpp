// SPDX-License-Identifier: MIT
#include "GUI/FocusMark.h"

#include <QApplication>
#include <QCheckBox>
#include <QDialog>
#include <QKeyEvent>
#include <QRadioButton>
#include <QScrollArea>

#include "GUI/FocusRing.h"
#include "GUI/FocusedEntry.h"
#include "GUI/LoginDialog.h"
#include "GUI/Retire.h"
#include "GUI/TabOrder.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

/// These only hold others: a page that has come in place of another one, a list, a window.
bool isContainer(const QWidget *widget)
{
    return widget->isWindow() || widget->metaObject() == &QWidget::staticMetaObject ||
           qobject_cast<const QScrollArea *>(widget);
}

/// Lists that drop down show for themselves what is chosen, and so does the sign-in's sheet,
/// which can't say it of a box to tick.
bool marksItself(const QWidget *widget)
{
    const bool isBox =
        qobject_cast<const QCheckBox *>(widget) || qobject_cast<const QRadioButton *>(widget);
    return widget->window()->windowType() == Qt::Popup ||
           (qobject_cast<const LoginDialog *>(widget->window()) && !isBox);
}

} // namespace

FocusMark::FocusMark(QApplication *application) : QObject(application)
{
    application->installEventFilter(this);
    connect(application, &QApplication::focusChanged, this, &FocusMark::moveRing);
}

bool FocusMark::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() == QEvent::MouseButtonPress)
        setShown(false);
    else if (event->type() == QEvent::KeyPress && watched == QApplication::focusWidget() &&
             handleKey(*static_cast<QKeyEvent *>(event)))
        return true;
    return QObject::eventFilter(watched, event);
}

bool FocusMark::handleKey(const QKeyEvent &event)
{
    switch (event.key()) {
    case Qt::Key_Tab:
    case Qt::Key_Backtab: {
        const QWidget *before = QApplication::focusWidget();
        setShown(true);
        return QApplication::focusWidget() != before; // it has gone into what held the others
    }
    case Qt::Key_Return:
    case Qt::Key_Enter:
        if ((event.modifiers() & ~Qt::KeypadModifier) != Qt::NoModifier)
            return false;
        // A dialog has a button of its own for it.
        if (qobject_cast<const QDialog *>(QApplication::focusWidget()->window()))
            return event.isAutoRepeat();
        // Held down it presses once, and chooses nothing from a list that it has opened.
        return event.isAutoRepeat() || pressEntry(QApplication::focusWidget());
    case Qt::Key_Menu:
        return openEntryMenu(QApplication::focusWidget());
    case Qt::Key_F10:
        return event.modifiers() == Qt::ShiftModifier && openEntryMenu(QApplication::focusWidget());
    default:
        return false;
    }
}

void FocusMark::setShown(bool shown)
{
    isShown = shown;
    moveRing();
}

void FocusMark::moveRing()
{
    QWidget *target = QApplication::focusWidget();
    if (ring && (!isShown || ring->parent() != target)) {
        retire(ring);
        ring.clear();
    }
    if (!isShown || !target || ring || marksItself(target))
        return;
    if (!isContainer(target)) {
        ring = new FocusRing(target);
        return;
    }
    const QWidgetList inside = target->isWindow() ? QWidgetList() : tabStops({target});
    if (inside.isEmpty())
        return;
    inside.first()->setFocus(Qt::TabFocusReason);
    scrollTo(inside.first());
}

} // namespace GUI
} // namespace ZorvaneClient
