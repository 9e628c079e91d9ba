// SPDX-License-Identifier: MIT
#pragma once

class QWidget;

namespace ZorvaneClient {
namespace GUI {

/// Takes `widget` from the screen, its parent and its parent's layout at once, and deletes it
/// when the signal of its own that it may be in the middle of is over. Null is ignored.
void retire(QWidget *widget);

} // namespace GUI
} // namespace ZorvaneClient
