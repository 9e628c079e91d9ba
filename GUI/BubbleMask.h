// SPDX-License-Identifier: MIT
#pragma once

class QWidget;

namespace ZorvaneClient {
namespace GUI {

/// Cuts a translucent window of its final size to what it paints. Without a compositor all that
/// it leaves free would be black.
void cutToPainting(QWidget *bubble);

} // namespace GUI
} // namespace ZorvaneClient
