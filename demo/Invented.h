// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <memory>
#include <vector>

#include "demo/ServiceWords.h"
#include "service/ArchiveCatalogue.h"
#include "service/Roster.h"

namespace ZorvaneDemo {

/// A camera with what it shows and what is recorded of it.
struct InventedCamera : Camera {
    int number = 0; ///< unique in the world; what the strip shows
    int scene = 0;
    /// In place of the planned ones, ascending and apart; null: the planned ones.
    std::shared_ptr<const std::vector<Record>> records;
};

struct InventedServer : Server {
    std::map<int, InventedCamera> cameras;

    ServerWithCameras forClient() const;
};

} // namespace ZorvaneDemo
