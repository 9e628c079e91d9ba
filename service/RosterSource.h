// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "service/Roster.h"

namespace ZorvaneService {

/// Which servers and cameras there are. Asked from any thread.
class RosterSource
{
public:
    virtual ~RosterSource() = default;

    virtual std::vector<ServerWithCameras> servers() const = 0;
    virtual std::optional<CameraOfServer> camera(const CameraId &id) const = 0;
    /// The server of the LAN that listens on that port.
    virtual std::optional<ServerWithCameras> lanServer(int port) const = 0;
    /// Goes up with every change, so that streams are looked at again.
    virtual std::uint64_t generation() const = 0;

    /// False when there is no such camera.
    virtual bool setRotation(const CameraId &id, int degrees) = 0;
};

} // namespace ZorvaneService
