// SPDX-License-Identifier: MIT
#pragma once

#include "service/Http.h"

namespace ZorvaneService {

/// Qualities of a stream, low to high.
constexpr int qualityCount = 3;

/// The quality that a request asks for, 0 to `qualityCount` - 1; without a number the lowest.
int requestedQuality(const HttpRequest &request);

} // namespace ZorvaneService
