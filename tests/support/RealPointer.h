// SPDX-License-Identifier: MIT
// Mouse and keys of the X display that a test runs on.
#pragma once

#include "tests/support/Test.h"

namespace ZorvaneClient::Tests {

/// Such as "mousedown 1", the left button.
inline void xdotool(const QString &words)
{
    QProcess::execute("xdotool"_s, words.split(' '));
}

inline void moveTo(const QPoint &place)
{
    xdotool("mousemove %1 %2"_s.arg(place.x()).arg(place.y()));
}

/// Those that take the pointer to be over them and it is not, or that are under it unawares.
inline QString misledByThePointer()
{
    const QWidget *under = QApplication::widgetAt(QCursor::pos());
    QStringList misled;
    const QWidgetList widgets = QApplication::allWidgets();
    for (const QWidget *widget : widgets) {
        const bool isInWindow = under && widget->window() == under->window();
        const bool isOver = isInWindow && (widget == under || widget->isAncestorOf(under));
        if (isOver != widget->underMouse())
            misled += "%1#%2"_s.arg(widget->metaObject()->className(), widget->objectName());
    }
    return misled.join(' ');
}

} // namespace ZorvaneClient::Tests
