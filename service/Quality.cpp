// SPDX-License-Identifier: MIT
#include "service/Quality.h"

#include <algorithm>

namespace ZorvaneService {

int requestedQuality(const HttpRequest &request)
{
    const std::int64_t quality = numberOr(request.parameters()["q"], 0);
    return static_cast<int>(std::clamp<std::int64_t>(quality, 0, qualityCount - 1));
}

} // namespace ZorvaneService
