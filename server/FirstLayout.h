// SPDX-License-Identifier: MIT
#pragma once

#include <nlohmann/json.hpp>

#include "service/Roster.h"

namespace ZorvaneServer {

/// What an account without layouts begins with: one of all the server's cameras, as the client
/// stores it.
nlohmann::json firstLayouts(const ZorvaneService::ServerWithCameras &lan);

} // namespace ZorvaneServer
