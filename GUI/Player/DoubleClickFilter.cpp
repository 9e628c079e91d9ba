// SPDX-License-Identifier: MIT
#include "GUI/Player/DoubleClickFilter.h"

#include <QEvent>

namespace ZorvaneClient {
namespace GUI {
namespace Player {

DoubleClickFilter::DoubleClickFilter(QObject *parent) : QObject(parent)
{
}

bool DoubleClickFilter::eventFilter(QObject *watched, QEvent *event)
{
    if (event->type() != QEvent::MouseButtonDblClick)
        return QObject::eventFilter(watched, event);
    event->accept();
    return true;
}

} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
