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

#include "demo/Server.h"
#include "demo/WorldMaker.h"

namespace ZorvaneDemo {

/// The servers and cameras that this service pretends to have. The same options make the
/// same world. Safe to use from any thread.
class World
{
public:
    explicit World(const WorldOptions &options);

    /// Gives the LAN servers their addresses, in order; before anything else.
    void setLanPorts(const std::vector<int> &ports);

    std::optional<Server> server(const std::string &id) const;
    /// The camera of that server if both exist; `server` gets the server without cameras.
    std::optional<Camera> camera(const std::string &server, int id, Server *owner = nullptr) const;
    std::vector<Server> servers() const;
    std::set<int> scenes() const;
    /// Goes up with every change.
    std::uint64_t generation() const { return changes; }

    // The changes below are false, 0 or empty when there is no such camera or server.

    /// Sets what `values` name; throws where a value is of the wrong kind.
    bool setCamera(const std::string &server, int id, const nlohmann::json &values);
    /// Gives the camera these records; null: those of its plan again.
    bool setRecords(const std::string &server, int id,
                    std::shared_ptr<const std::vector<Record>> records);
    bool setServer(const std::string &server, const nlohmann::json &values);
    /// The new camera's id; an empty name leaves it the one that it was made with.
    int addCamera(const std::string &server, const std::string &name);
    bool removeCamera(const std::string &server, int id);
    /// The new cloud server's id.
    std::string addServer(const std::string &name, int cameras);
    bool removeServer(const std::string &id);
    /// Puts back what the options made.
    void reset();

private:
    template <typename Change>
    bool changeServer(const std::string &id, Change change);
    template <typename Change>
    bool changeCamera(const std::string &server, int id, Change change);

    WorldMaker maker;
    mutable std::mutex mutex;
    std::vector<Server> list;
    std::vector<Server> original;
    std::atomic<std::uint64_t> changes{1};
};

} // namespace ZorvaneDemo
