// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <optional>
#include <string>

namespace ZorvaneServer {

/// The service manager that has started the program, if one has.
namespace Supervisor {

/// "READY=1" and the like. False when it wasn't told.
bool tell(const std::string &message);
/// How often it wants to hear "WATCHDOG=1", with time to spare.
std::optional<std::chrono::milliseconds> heartbeat();

} // namespace Supervisor
} // namespace ZorvaneServer
