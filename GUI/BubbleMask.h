// SPDX-License-Identifier: MIT
#pragma once

class QWidget;

namespace ZorvaneClient {
namespace GUI {

/// Cuts a translucent window of its final size to what it paints, where no compositor runs: all
/// that it leaves free would be black. With one it stays whole, and its rim smooth.
void cutToPainting(QWidget *bubble);

} // namespace GUI
} // namespace ZorvaneClient
