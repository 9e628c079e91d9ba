// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <string>

namespace ZorvaneClient {
namespace Companion {

// What the player and the export read in a stream's address, and how they write one.

/// "scheme://" at the front.
bool hasScheme(const std::string &url);
/// Blanks, control bytes, quotes, angle brackets and bytes over 126 as %XX; the rest as it stands.
std::string requestSafe(const std::string &url);
/// The path ends with "/live".
bool isLive(const std::string &url);
/// The value of the first query item of that name, as it stands; nothing without one.
std::optional<std::string> queryItem(const std::string &url, const std::string &name);

/// Every byte but letters, digits and "-._~" as %XX, for a part of an address.
std::string percentEncoded(const std::string &text);

} // namespace Companion
} // namespace ZorvaneClient
