// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

namespace ZorvaneService {

using Bytes = std::vector<std::uint8_t>;

} // namespace ZorvaneService
