// SPDX-License-Identifier: MIT
#include "service/RateLimit.h"

#include <thread>

namespace ZorvaneService {

bool RateLimit::write(const void *data, std::size_t size)
{
    if (!sink.write(data, size))
        return false;
    passed += static_cast<std::int64_t>(size);
    if (rate > 0)
        std::this_thread::sleep_until(began + std::chrono::milliseconds(passed / rate));
    return true;
}

} // namespace ZorvaneService
