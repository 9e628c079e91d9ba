// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <map>
#include <mutex>
#include <string>
#include <utility>

#include "server/LiveRing.h"

namespace ZorvaneServer {

/// The newest pictures as JPEG. One is made when it is asked for, and given again to all who ask
/// within a second or before there is a newer one. Any thread may ask.
class PreviewShelf
{
public:
    static constexpr std::chrono::seconds kept{1};

    /// No wider than the quality's. Empty when there is none.
    std::string take(const LiveRing &ring, int quality);

private:
    struct Place {
        std::mutex mutex;
        PacketPtr picture;
        std::string jpeg;
        std::chrono::steady_clock::time_point made;
    };

    std::mutex mutex;
    std::map<std::pair<const LiveRing *, int>, Place> places;
};

} // namespace ZorvaneServer
