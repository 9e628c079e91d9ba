// SPDX-License-Identifier: MIT
#include "GUI/WidgetOrder.h"

#include <QBoxLayout>
#include <QHash>

namespace ZorvaneClient {
namespace GUI {

namespace {

bool holds(const QBoxLayout *layout, const QList<QWidget *> &widgets, int stretch)
{
    const int count = static_cast<int>(widgets.size());
    if (layout->count() != count + (stretch == 0 ? 0 : 1))
        return false;
    for (int i = 0; i < count; ++i) {
        if (layout->itemAt(i)->widget() != widgets.at(i))
            return false;
    }
    return stretch == 0 || layout->itemAt(count)->spacerItem();
}

/// Items of widgets are kept: adding a widget anew searches the whole layout for it.
QHash<QWidget *, QLayoutItem *> takeItems(QBoxLayout *layout)
{
    QHash<QWidget *, QLayoutItem *> items;
    items.reserve(layout->count());
    while (layout->count() > 0) {
        QLayoutItem *item = layout->takeAt(layout->count() - 1);
        if (QWidget *widget = item->widget()) {
            items.insert(widget, item);
        } else {
            delete item;
        }
    }
    return items;
}

} // namespace

void setWidgetOrder(QBoxLayout *layout, const QList<QWidget *> &widgets, int stretch)
{
    if (holds(layout, widgets, stretch))
        return;
    QHash<QWidget *, QLayoutItem *> items = takeItems(layout);
    for (QWidget *widget : widgets) {
        if (QLayoutItem *item = items.take(widget)) {
            layout->addItem(item);
        } else {
            layout->addWidget(widget);
        }
    }
    qDeleteAll(items);
    if (stretch != 0)
        layout->addStretch(stretch);
}

} // namespace GUI
} // namespace ZorvaneClient
