// SPDX-License-Identifier: MIT
#pragma once

namespace ZorvaneClient {
namespace GUI {

/// From now on screen readers are told of tiles, cards, buttons, sliders, the strip and the
/// calendar what the classes beside this file say. Costs nothing while no screen reader runs.
void installAccess();

} // namespace GUI
} // namespace ZorvaneClient
