// SPDX-License-Identifier: MIT
#pragma once

#include <nlohmann/json.hpp>

#include <atomic>
#include <cstdint>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "demo/Invented.h"
#include "demo/WorldMaker.h"
#include "service/RosterSource.h"

namespace ZorvaneDemo {

/// The servers and cameras that this service pretends to have. The same options make the
/// same world. Safe to use from any thread.
class World : public RosterSource
{
public:
    explicit World(const WorldOptions &options);

    /// Gives the LAN servers their addresses, in order; before anything else.
    void setLanPorts(const std::vector<int> &ports);

    std::vector<ServerWithCameras> servers() const override;
    std::optional<CameraOfServer> camera(const CameraId &id) const override;
    std::optional<ServerWithCameras> lanServer(int port) const override;
    std::uint64_t generation() const override { return changes; }

    /// The same with what only the demo knows of them.
    std::vector<InventedServer> everything() const;
    std::optional<InventedCamera> inventedCamera(const CameraId &id) const;
    std::set<int> scenes() const;

    // The changes below are false, 0 or empty when there is no such camera or server.

    bool setRotation(const CameraId &id, int degrees) override;
    /// Sets what `values` name; throws where a value is of the wrong kind.
    bool setCamera(const CameraId &id, const nlohmann::json &values);
    /// Gives the camera these records; null: those of its plan again.
    bool setRecords(const CameraId &id, std::shared_ptr<const std::vector<Record>> records);
    bool setServer(const std::string &server, const nlohmann::json &values);
    /// The new camera's id; an empty name leaves it the one that it was made with.
    int addCamera(const std::string &server, const std::string &name);
    bool removeCamera(const CameraId &id);
    /// The new cloud server's id.
    std::string addServer(const std::string &name, int cameras);
    bool removeServer(const std::string &id);
    /// Puts back what the options made.
    void reset();

private:
    template <typename Change>
    bool changeServer(const std::string &id, Change change);
    template <typename Change>
    bool changeCamera(const CameraId &id, Change change);

    WorldMaker maker;
    mutable std::mutex mutex;
    std::vector<InventedServer> list;
    std::vector<InventedServer> original;
    std::atomic<std::uint64_t> changes{1};
};

} // namespace ZorvaneDemo
