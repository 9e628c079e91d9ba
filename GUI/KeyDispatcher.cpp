// SPDX-License-Identifier: MIT
#include "GUI/KeyDispatcher.h"

#include <QApplication>
#include <QKeyEvent>
#include <QScrollArea>

namespace ZorvaneClient {
namespace GUI {

KeyDispatcher::KeyDispatcher(QWidget *ofWindow) : QObject(ofWindow), window(ofWindow)
{
    window->installEventFilter(this);
    const QList<QScrollArea *> pages = window->findChildren<QScrollArea *>();
    for (QScrollArea *page : pages)
        page->installEventFilter(this);
}

bool KeyDispatcher::isTyping() const
{
    const QWidget *focus = window->focusWidget();
    // Fields for text and numbers have it, unless they only show.
    return focus && focus->testAttribute(Qt::WA_InputMethodEnabled);
}

bool KeyDispatcher::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::KeyPress || QApplication::activeModalWidget() ||
        QApplication::activePopupWidget() || isTyping())
        return QObject::eventFilter(watched, event);
    const auto *key = static_cast<QKeyEvent *>(event);
    const KeyRow *row = keyRow(key->key(), key->modifiers());
    if (!row)
        return QObject::eventFilter(watched, event);
    // Held down, most of them would start all players anew thirty times a second.
    if (!key->isAutoRepeat())
        emit triggered(row->action, row->number);
    return true;
}

} // namespace GUI
} // namespace ZorvaneClient
