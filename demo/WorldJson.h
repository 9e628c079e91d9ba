// SPDX-License-Identifier: MIT
#pragma once

#include <nlohmann/json.hpp>

#include <vector>

#include "demo/Server.h"

namespace ZorvaneDemo {

/// The reply of the roster request: the cloud's servers.
nlohmann::json rosterJson(const std::vector<Server> &servers);
/// The content of the client's `local_roster.txt`: the LAN's servers.
nlohmann::json localRosterJson(const std::vector<Server> &servers);
/// All servers, cameras and strip numbers, for the control interface.
nlohmann::json worldJson(const std::vector<Server> &servers);

/// Sets what `values` name; throws where a value is of the wrong kind.
void apply(const nlohmann::json &values, Camera *camera);
void apply(const nlohmann::json &values, Server *server);

} // namespace ZorvaneDemo
