// SPDX-License-Identifier: MIT
#pragma once

#include <QMap>

#include "GUI/Retire.h"

namespace ZorvaneClient {
namespace GUI {

/// Brings `widgets`, each of which shows a thing, in line with `things`: what is left is
/// updated, what is new made by `create`, and what is gone retired. A thing that went and came
/// back unseen is a new object under the old key: it gets a new widget.
template <typename Key, typename Widget, typename Thing, typename Create>
void updateWidgets(QMap<Key, Widget *> *widgets, const QMap<Key, Thing> &things,
                   Thing (Widget::*thingOf)() const, void (Widget::*update)(Thing), Create create)
{
    for (auto entry = widgets->begin(); entry != widgets->end();) {
        Widget *widget = entry.value();
        if (things.value(entry.key()) == (widget->*thingOf)()) {
            ++entry;
            continue;
        }
        entry = widgets->erase(entry);
        retire(widget);
    }
    for (auto entry = things.cbegin(); entry != things.cend(); ++entry) {
        if (Widget *widget = widgets->value(entry.key(), nullptr)) {
            (widget->*update)(entry.value());
        } else {
            widgets->insert(entry.key(), create(entry.value()));
        }
    }
}

} // namespace GUI
} // namespace ZorvaneClient
