// SPDX-License-Identifier: MIT
#pragma once

#include <QPalette>

namespace ZorvaneClient {
namespace GUI {

/// The colours of all that no style sheet paints, whatever theme the desktop has: those of the
/// panels, in pairs of ground and text that can be read.
QPalette housePalette();

/// Light on dark, as most sheets have their labels: a tool tip is a label of the widget below.
QPalette toolTipPalette();

} // namespace GUI
} // namespace ZorvaneClient
