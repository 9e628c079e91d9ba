// SPDX-License-Identifier: MIT
#pragma once

namespace ZorvaneClient {
namespace GUI {
namespace Internal {

struct TimelinePrivate;

/// Draws the bars of all cameras' records into `recordsImage`: the image keeps them, so that
/// what follows the mouse stays cheap whatever the number of records.
void renderRecords(TimelinePrivate &timeline);

} // namespace Internal
} // namespace GUI
} // namespace ZorvaneClient
