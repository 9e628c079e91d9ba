// SPDX-License-Identifier: MIT
#include "service/RateLimit.h"

namespace ZorvaneService {

bool RateLimit::write(const void *data, std::size_t size)
{
    if (!sink.write(data, size))
        return false;
    passed += static_cast<std::int64_t>(size);
    if (rate > 0)
        sleepUntil(beganMs + passed / rate);
    return true;
}

} // namespace ZorvaneService
