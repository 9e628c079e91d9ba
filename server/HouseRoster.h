// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstddef>
#include <map>
#include <mutex>
#include <string>
#include <vector>

#include "service/RosterSource.h"

namespace ZorvaneServer {

/// The house as the client sees it: a cloud server without cameras, since saved layouts are read
/// only while there is one, and a server of the LAN with all cameras. Safe to use from any
/// thread.
class HouseRoster : public ZorvaneService::RosterSource
{
public:
    using CameraId = ZorvaneService::CameraId;

    /// `address` is the LAN server's, as the client reaches it. A camera keeps its number and
    /// its rotation in `stateFile` for as long as it keeps its name.
    HouseRoster(const std::vector<std::string> &cameras, std::string host, int port,
                std::string password, std::string stateFile);

    std::vector<ZorvaneService::ServerWithCameras> servers() const override;
    std::optional<ZorvaneService::CameraOfServer> camera(const CameraId &id) const override;
    std::optional<ZorvaneService::ServerWithCameras> lanServer(int port) const override;
    std::uint64_t generation() const override { return changes; }
    bool setRotation(const CameraId &id, int degrees) override;

    /// The configured name; empty when there is no such camera.
    std::string nameOf(const CameraId &id) const;
    /// Whether pictures come from the camera, by its place in the configuration.
    void setOnline(std::size_t camera, bool online);
    void setSize(std::size_t camera, ZorvaneService::PictureSize size);

private:
    using Camera = ZorvaneService::Camera;

    struct Kept {
        int id = 0;
        int rotation = 0;
    };

    void readState();
    void store() const;
    const Camera *find(const CameraId &id) const;

    const std::string stateFile;
    const int lanPort;
    ZorvaneService::Server lan;
    mutable std::mutex mutex;
    std::vector<Camera> cameras;      ///< in the order of the configuration
    std::map<std::string, Kept> kept; ///< by name, also of cameras that are gone
    std::atomic<std::uint64_t> changes{1};
};

} // namespace ZorvaneServer
