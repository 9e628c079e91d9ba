// SPDX-License-Identifier: MIT
#include "demo/World.h"

#include <algorithm>
#include <cstddef>
#include <utility>

#include "demo/WorldJson.h"
#include "service/Loopback.h"

namespace ZorvaneDemo {

namespace {

template <typename Servers>
auto findIn(Servers &servers, const std::string &id)
{
    return std::find_if(servers.begin(), servers.end(),
                        [&](const Server &server) { return server.id == id; });
}

/// Null when there is no such camera.
const InventedCamera *findIn(const InventedServer &server, int id)
{
    const auto found = server.cameras.find(id);
    return found == server.cameras.end() ? nullptr : &found->second;
}

} // namespace

World::World(const WorldOptions &options) : maker(options), list(maker.makeAll()), original(list)
{
}

void World::setLanPorts(const std::vector<int> &ports)
{
    const std::lock_guard<std::mutex> lock(mutex);
    std::size_t next = 0;
    for (InventedServer &server : list) {
        if (server.lan && next < ports.size())
            server.id = lanServerId(ports[next++]);
    }
    original = list;
}

std::vector<ServerWithCameras> World::servers() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    std::vector<ServerWithCameras> result;
    for (const InventedServer &server : list)
        result.push_back(server.forClient());
    return result;
}

std::optional<CameraOfServer> World::camera(const CameraId &id) const
{
    const std::lock_guard<std::mutex> lock(mutex);
    const auto server = findIn(list, id.server);
    const auto *camera = server == list.end() ? nullptr : findIn(*server, id.camera);
    return camera ? std::optional<CameraOfServer>({*server, *camera}) : std::nullopt;
}

std::optional<ServerWithCameras> World::lanServer(int port) const
{
    const std::lock_guard<std::mutex> lock(mutex);
    const auto found = findIn(list, lanServerId(port));
    return found == list.end() ? std::nullopt
                               : std::optional<ServerWithCameras>(found->forClient());
}

std::vector<InventedServer> World::everything() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return list;
}

std::optional<InventedCamera> World::inventedCamera(const CameraId &id) const
{
    const std::lock_guard<std::mutex> lock(mutex);
    const auto server = findIn(list, id.server);
    const auto *camera = server == list.end() ? nullptr : findIn(*server, id.camera);
    return camera ? std::optional<InventedCamera>(*camera) : std::nullopt;
}

std::set<int> World::scenes() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    std::set<int> result;
    for (const InventedServer &server : list) {
        for (const auto &[id, camera] : server.cameras)
            result.insert(camera.scene);
    }
    return result;
}

/// Changes the server of that id, if there is one and `change` says that it did.
template <typename Change>
bool World::changeServer(const std::string &id, Change change)
{
    const std::lock_guard<std::mutex> lock(mutex);
    const auto found = findIn(list, id);
    if (found == list.end() || !change(*found))
        return false;
    ++changes;
    return true;
}

template <typename Change>
bool World::changeCamera(const CameraId &id, Change change)
{
    return changeServer(id.server, [&](InventedServer &owner) {
        const auto found = owner.cameras.find(id.camera);
        if (found == owner.cameras.end())
            return false;
        change(found->second);
        return true;
    });
}

bool World::setRotation(const CameraId &id, int degrees)
{
    return changeCamera(id, [degrees](InventedCamera &camera) { camera.rotation = degrees; });
}

bool World::setCamera(const CameraId &id, const nlohmann::json &values)
{
    return changeCamera(id, [&](InventedCamera &camera) { setValues(values, &camera); });
}

bool World::setRecords(const CameraId &id, std::shared_ptr<const std::vector<Record>> records)
{
    return changeCamera(id, [&](InventedCamera &camera) { camera.records = std::move(records); });
}

bool World::setServer(const std::string &id, const nlohmann::json &values)
{
    return changeServer(id, [&](InventedServer &server) {
        setValues(values, &server);
        return true;
    });
}

int World::addCamera(const std::string &server, const std::string &name)
{
    int id = 0;
    changeServer(server, [&](InventedServer &owner) {
        id = maker.addCameraTo(&owner);
        if (!name.empty())
            owner.cameras[id].name = name;
        return true;
    });
    return id;
}

bool World::removeCamera(const CameraId &id)
{
    return changeServer(id.server,
                        [&](InventedServer &owner) { return owner.cameras.erase(id.camera) > 0; });
}

std::string World::addServer(const std::string &name, int cameras)
{
    const std::lock_guard<std::mutex> lock(mutex);
    list.push_back(maker.makeServer(cameras));
    if (!name.empty())
        list.back().name = name;
    ++changes;
    return list.back().id;
}

bool World::removeServer(const std::string &id)
{
    const std::lock_guard<std::mutex> lock(mutex);
    const auto found = findIn(list, id);
    if (found == list.end())
        return false;
    list.erase(found);
    ++changes;
    return true;
}

void World::reset()
{
    const std::lock_guard<std::mutex> lock(mutex);
    list = original;
    ++changes;
}

} // namespace ZorvaneDemo
