// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>

#include "service/Roster.h"

namespace ZorvaneServer {

/// Gives the configured name of a camera, by which its streams go; an empty one when there is no
/// such camera. Called on any thread.
using CameraNames = std::function<std::string(const ZorvaneService::CameraId &)>;

} // namespace ZorvaneServer
