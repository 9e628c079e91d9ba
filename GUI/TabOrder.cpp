// SPDX-License-Identifier: MIT
#include "GUI/TabOrder.h"

#include <QAbstractSpinBox>
#include <QApplication>
#include <QComboBox>
#include <QHBoxLayout>
#include <QLineEdit>
#include <QScrollArea>
#include <QSlider>

#include <algorithm>

#include "GUI/FocusedEntry.h"
#include "GUI/Timeline.h"

namespace ZorvaneClient {
namespace GUI {

namespace {

template <typename... Kinds>
bool isOneOf(const QWidget *widget)
{
    return (qobject_cast<const Kinds *>(widget) || ...);
}

void collect(QWidget *widget, QWidgetList *stops)
{
    if (!widget->isVisible() || !widget->isEnabled())
        return;
    if (isTabStop(widget)) {
        stops->append(widget);
        return;
    }
    QWidgetList parts;
    for (QObject *child : widget->children()) {
        if (child->isWidgetType() && !static_cast<QWidget *>(child)->isWindow())
            parts.append(static_cast<QWidget *>(child));
    }
    const bool isRow = qobject_cast<const QHBoxLayout *>(widget->layout());
    std::stable_sort(parts.begin(), parts.end(), [isRow](const QWidget *a, const QWidget *b) {
        return isRow || a->y() == b->y() ? a->x() < b->x() : a->y() < b->y();
    });
    for (QWidget *part : parts)
        collect(part, stops);
}

} // namespace

bool isTabStop(const QWidget *widget)
{
    if (const auto *field = qobject_cast<const QLineEdit *>(widget))
        return !field->isReadOnly();
    return canBePressed(widget) || isOneOf<QAbstractSpinBox, QComboBox, QSlider, Timeline>(widget);
}

QWidgetList tabStops(const QWidgetList &parts)
{
    QWidgetList stops;
    for (QWidget *part : parts)
        collect(part, &stops);
    return stops;
}

void scrollTo(QWidget *widget)
{
    for (QWidget *outer = widget->parentWidget(); outer; outer = outer->parentWidget()) {
        if (auto *area = qobject_cast<QScrollArea *>(outer))
            area->ensureWidgetVisible(widget);
    }
}

bool moveFocus(const QWidgetList &stops, bool forward)
{
    QWidget *focused = QApplication::focusWidget();
    // It is being hidden, and its stack will say what comes in its place.
    if (focused && !focused->isVisible()) {
        focused->clearFocus();
        return true;
    }
    if (stops.isEmpty())
        return false;
    const int count = static_cast<int>(stops.size());
    const int present = static_cast<int>(stops.indexOf(focused));
    const int previous = present < 0 ? count - 1 : (present + count - 1) % count;
    QWidget *stop = stops.at(forward ? (present + 1) % count : previous);
    stop->setFocus(forward ? Qt::TabFocusReason : Qt::BacktabFocusReason);
    scrollTo(stop);
    return true;
}

} // namespace GUI
} // namespace ZorvaneClient
