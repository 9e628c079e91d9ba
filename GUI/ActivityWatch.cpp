// SPDX-License-Identifier: MIT
#include "GUI/ActivityWatch.h"

#include <QCoreApplication>
#include <QCursor>
#include <QMouseEvent>

#include "App/QtShims.h"

namespace ZorvaneClient {
namespace GUI {

ActivityWatch::ActivityWatch(QObject *parent) : QObject(parent), pointer(QCursor::pos())
{
    QCoreApplication::instance()->installEventFilter(this);
}

bool ActivityWatch::eventFilter(QObject *watched, QEvent *event)
{
    switch (event->type()) {
    case QEvent::KeyPress:
    case QEvent::MouseButtonPress:
    case QEvent::Wheel:
    case QEvent::DragMove:
    case QEvent::TouchBegin:
        emit touched();
        break;
    case QEvent::MouseMove: {
        // Of one that rests between two pixels either may be told.
        const QPointF place = globalPosition(*static_cast<QMouseEvent *>(event));
        const QPointF way = place - pointer;
        if (qMax(qAbs(way.x()), qAbs(way.y())) >= 1) {
            pointer = place;
            emit touched();
            emit pointerMoved();
        }
        break;
    }
    default:
        break;
    }
    return QObject::eventFilter(watched, event);
}

} // namespace GUI
} // namespace ZorvaneClient
