// SPDX-License-Identifier: MIT
#pragma once

namespace ZorvaneClient {
namespace API {

/// What the address of a stream or a preview says of its quality, as "q".
enum StreamQuality : int { LowQuality = 0, MiddleQuality = 1, HighQuality = 2 };

} // namespace API
} // namespace ZorvaneClient
