// SPDX-License-Identifier: MIT
#include "demo/Invented.h"

namespace ZorvaneDemo {

ServerWithCameras InventedServer::forClient() const
{
    ServerWithCameras result{*this, {}};
    for (const auto &entry : cameras)
        result.cameras.push_back(entry.second);
    return result;
}

} // namespace ZorvaneDemo
