// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

namespace ZorvaneClient::Pictures {

/// Ends the program when it does not hold, and says what was missing.
void require(bool holds, const char *what);
/// Waits for it, or ends the program.
void waitFor(const std::function<bool()> &condition, const char *what);
/// Lets what moves on the screen come to rest.
void settle();

} // namespace ZorvaneClient::Pictures
