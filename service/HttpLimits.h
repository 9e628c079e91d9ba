// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstddef>

namespace ZorvaneService {

/// What a listener lets a peer have. Whoever goes beyond is refused or loses the connection.
struct HttpLimits {
    int connections = 1024;       ///< at a time; each has a thread
    int waitingConnections = 512; ///< not yet accepted
    int requestsOfConnection = 5;
    std::size_t headerBytes = std::size_t(64) * 1024; ///< with the request's first line
    std::size_t bodyBytes = std::size_t(16) * 1024 * 1024;
    std::chrono::milliseconds idleTime = std::chrono::seconds(5);    ///< between two requests
    std::chrono::milliseconds requestTime = std::chrono::minutes(1); ///< to its last byte
    /// A paused player reads nothing for as long as it likes.
    std::chrono::milliseconds writeTime = std::chrono::hours(24);
};

} // namespace ZorvaneService
