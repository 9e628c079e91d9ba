// SPDX-License-Identifier: MIT
#pragma once

#include <Qt>

class QMimeData;
class QWidget;

namespace ZorvaneClient {
namespace GUI {

/// Drags `data`, which it takes over, under a tilted picture of `widget`; returns when the
/// drag is over. A roster refresh may delete `widget` meanwhile.
void dragCard(QWidget *widget, QMimeData *data, Qt::DropAction action);

} // namespace GUI
} // namespace ZorvaneClient
