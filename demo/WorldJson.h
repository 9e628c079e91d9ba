// SPDX-License-Identifier: MIT
#pragma once

#include <nlohmann/json.hpp>

#include <vector>

#include "demo/Invented.h"

namespace ZorvaneDemo {

/// All servers, cameras and strip numbers, for the control interface.
nlohmann::json worldJson(const std::vector<InventedServer> &servers);

/// Sets what `values` name; throws where a value is of the wrong kind.
void setValues(const nlohmann::json &values, Camera *camera);
void setValues(const nlohmann::json &values, Server *server);

} // namespace ZorvaneDemo
