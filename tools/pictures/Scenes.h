// SPDX-License-Identifier: MIT
#pragma once

namespace ZorvaneClient::Pictures {

class Studio;

/// Says what the first cameras and the LAN camera have recorded; before the sign-in.
void recordArchive(Studio &studio);

// The scenes. Each begins where the one before it has left the program, in this order.
void takeSignIn(Studio &studio);
void takeRoster(Studio &studio);
void takeWalls(Studio &studio);
void takeLayouts(Studio &studio);
void takeControls(Studio &studio);
void takeArchive(Studio &studio);
void takeExport(Studio &studio);
void takeDialogs(Studio &studio);
void takeSettings(Studio &studio);

} // namespace ZorvaneClient::Pictures
