// SPDX-License-Identifier: MIT
#pragma once

#include <nlohmann/json.hpp>

#include <vector>

#include "service/Roster.h"

namespace ZorvaneService {

/// The reply of the roster request: the cloud's servers.
nlohmann::json rosterJson(const std::vector<ServerWithCameras> &servers);
/// The content of the client's `local_roster.txt`: the LAN's servers.
nlohmann::json localRosterJson(const std::vector<ServerWithCameras> &servers);
/// What a user may do with the camera, in the words of the roster.
nlohmann::json rightsJson(const Camera &camera);

} // namespace ZorvaneService
