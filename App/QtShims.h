// SPDX-License-Identifier: MIT
#pragma once

#include <QDate>
#include <QEvent>
#include <QPointF>
#include <QtGlobal>

#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
#include <QEnterEvent>
#endif

namespace ZorvaneClient {

// What differs between Qt 5.15 and Qt 6, in one place.

#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
using EnterEvent = QEnterEvent;
using CalendarDate = QDate; // of QCalendarWidget's cells
#else
using EnterEvent = QEvent;
using CalendarDate = const QDate &;
#endif

/// Where a QMouseEvent happened, in the widget's coordinates.
template <typename MouseEvent>
QPointF localPosition(const MouseEvent &event)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    return event.position();
#else
    return event.localPos();
#endif
}

/// Where a QMouseEvent happened, on the desktop.
template <typename MouseEvent>
QPointF globalPosition(const MouseEvent &event)
{
#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
    return event.globalPosition();
#else
    return event.screenPos();
#endif
}

} // namespace ZorvaneClient
