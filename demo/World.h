// SPDX-License-Identifier: MIT
#pragma once

#include <nlohmann/json.hpp>

#include <atomic>
#include <cstdint>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <vector>

#include "demo/RecordPlan.h"

namespace ZorvaneDemo {

struct Camera {
    int id = 0;
    int number = 0; ///< unique in the world; what the strip shows
    int scene = 0;
    std::string name;
    bool online = true;
    bool paid = true;
    bool live = true;    ///< the right
    bool archive = true; ///< the right
    bool ptz = false;    ///< the right
    int rotation = 0;
    bool mirror = false;
    /// In place of the planned ones, ascending and apart; null: the planned ones.
    std::shared_ptr<const std::vector<Record>> records;
};

struct Server {
    std::string id; ///< of a LAN server "127.0.0.1:port"
    std::string name;
    bool owner = true;
    bool live = true;
    bool archive = true;
    bool online = true;
    bool isCamera = false;
    bool lan = false;
    std::string password; ///< LAN servers only
    std::map<int, Camera> cameras;
};

struct WorldOptions {
    unsigned seed = 1;
    int servers = 5;
    int cameras = 14;
    int lanServers = 1;
    bool plain = false; ///< everything online, paid for and with all rights
    int scenes = 12;    ///< cameras share this many scenes
};

/// The servers and cameras that this service pretends to have. The same options make the
/// same world. Safe to use from any thread.
class World
{
public:
    static constexpr const char *lanPassword = "camera+1";
    static constexpr int camerasPerLanServer = 3;

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

    /// The reply of the roster request.
    nlohmann::json roster() const;
    /// Servers, cameras and strip numbers for the control interface.
    nlohmann::json describe() const;
    /// The content of the client's `local_roster.txt`.
    nlohmann::json localRoster() const;

    bool setCamera(const std::string &server, int id, const nlohmann::json &values);
    /// Gives the camera these records; null: those of its plan again.
    bool setRecords(const std::string &server, int id,
                    std::shared_ptr<const std::vector<Record>> records);
    bool setServer(const std::string &server, const nlohmann::json &values);
    /// The new camera's id, 0 when there is no such server.
    int addCamera(const std::string &server, const std::string &name);
    bool removeCamera(const std::string &server, int id);
    /// The new cloud server's id.
    std::string addServer(const std::string &name, int cameras);
    bool removeServer(const std::string &id);
    /// Puts back what the options made.
    void reset();

private:
    Server *find(const std::string &id);
    const Server *find(const std::string &id) const;
    Camera newCamera();

    WorldOptions options;
    mutable std::mutex mutex;
    std::vector<Server> list;
    std::vector<Server> original;
    int nextNumber = 1;
    int nextServer = 1;
    std::atomic<std::uint64_t> changes{1};
};

} // namespace ZorvaneDemo
