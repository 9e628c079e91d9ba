// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace ZorvaneDemo {

/// Name of the cloud server at `index`. The first few fit the first few cameras.
std::string serverName(unsigned seed, int index);
/// Name of the camera at `index` of the whole world; it fits the scene of that index.
std::string cameraName(unsigned seed, int index);
/// Name of the LAN server at `index`.
std::string lanServerName(int index);

} // namespace ZorvaneDemo
