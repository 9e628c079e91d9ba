// SPDX-License-Identifier: MIT
#pragma once

#include <QDate>
#include <QEvent>
#include <QPointF>
#include <QtGlobal>

#if QT_VERSION >= QT_VERSION_CHECK(6, 0, 0)
class QEnterEvent;
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

/// Before the application is made: sizes and pictures follow the screen's scale.
template <typename GuiApplication>
void useScreenScale()
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    GuiApplication::setAttribute(Qt::AA_EnableHighDpiScaling);
    GuiApplication::setAttribute(Qt::AA_UseHighDpiPixmaps);
#endif
}

/// For a QTextStream.
template <typename TextStream>
void useUtf8([[maybe_unused]] TextStream *stream)
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    stream->setCodec("UTF-8");
#endif
}

/// For the QSettings of an INI file.
template <typename Settings>
void useUtf8Ini([[maybe_unused]] Settings *file)
{
#if QT_VERSION < QT_VERSION_CHECK(6, 0, 0)
    file->setIniCodec("UTF-8");
#endif
}

} // namespace ZorvaneClient
