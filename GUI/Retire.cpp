// SPDX-License-Identifier: MIT
#include "GUI/Retire.h"

#include <QWidget>

namespace ZorvaneClient {
namespace GUI {

void retire(QWidget *widget)
{
    if (!widget)
        return;
    widget->hide();
    // Whoever looks through the parent's children before the deletion must not find it.
    widget->setParent(nullptr);
    widget->deleteLater();
}

} // namespace GUI
} // namespace ZorvaneClient
