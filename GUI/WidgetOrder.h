// SPDX-License-Identifier: MIT
#pragma once

#include <QList>

class QBoxLayout;
class QWidget;

namespace ZorvaneClient {
namespace GUI {

/// Makes `layout` hold exactly `widgets`, in their order, and behind them a stretch unless
/// `stretch` is 0. A layout that does already is left alone; widgets that leave it stay
/// where they are. Linear in the number of widgets.
void setWidgetOrder(QBoxLayout *layout, const QList<QWidget *> &widgets, int stretch = 0);

} // namespace GUI
} // namespace ZorvaneClient
