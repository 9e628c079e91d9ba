// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace ZorvaneService {

/// The only address that the service listens on.
constexpr char loopback[] = "127.0.0.1";

/// "127.0.0.1:port".
inline std::string loopbackAddress(int port)
{
    return std::string(loopback) + ':' + std::to_string(port);
}
/// A LAN server goes by its address.
inline std::string lanServerId(int port)
{
    return loopbackAddress(port);
}

} // namespace ZorvaneService
