// SPDX-License-Identifier: MIT
#pragma once

#include <map>
#include <memory>
#include <string>
#include <vector>

#include "demo/RecordPlan.h"

namespace ZorvaneDemo {

struct Camera {
    int id = 0;
    int number = 0; ///< unique in the world; what the strip shows
    int scene = 0;
    std::string name;
    bool online = true;
    bool paid = true;
    bool live = true;    ///< the right
    bool archive = true; ///< the right
    bool ptz = false;    ///< the right
    int rotation = 0;
    bool mirror = false;
    /// In place of the planned ones, ascending and apart; null: the planned ones.
    std::shared_ptr<const std::vector<Record>> records;
};

struct Server {
    std::string id; ///< see lanServerId() for one of the LAN
    std::string name;
    bool owner = true;
    bool live = true;
    bool archive = true;
    bool online = true;
    bool isCamera = false;
    bool lan = false;
    std::string password; ///< LAN servers only
    std::map<int, Camera> cameras;
};

} // namespace ZorvaneDemo
