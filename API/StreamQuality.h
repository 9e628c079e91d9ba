// SPDX-License-Identifier: MIT
#pragma once

namespace ZorvaneClient {
namespace API {

/// What a stream's address says of its quality, as "q".
enum StreamQuality : int { LowQuality = 0, MiddleQuality = 1, HighQuality = 2 };

} // namespace API
} // namespace ZorvaneClient
