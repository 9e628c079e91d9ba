// SPDX-License-Identifier: MIT
#include "GUI/StyleProperty.h"

#include <QStyle>
#include <QVariant>
#include <QWidget>

namespace ZorvaneClient {
namespace GUI {

void setStyleProperty(QWidget *widget, const char *name, const QVariant &value)
{
    widget->setProperty(name, value);
    widget->style()->unpolish(widget);
    widget->style()->polish(widget);
    widget->update();
}

} // namespace GUI
} // namespace ZorvaneClient
