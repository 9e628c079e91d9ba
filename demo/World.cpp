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

} // namespace

World::World(const WorldOptions &options) : maker(options), list(maker.makeAll()), original(list)
{
}

void World::setLanPorts(const std::vector<int> &ports)
{
    const std::lock_guard<std::mutex> lock(mutex);
    std::size_t next = 0;
    for (Server &server : list) {
        if (server.lan && next < ports.size())
            server.id = lanServerId(ports[next++]);
    }
    original = list;
}

std::optional<Server> World::server(const std::string &id) const
{
    const std::lock_guard<std::mutex> lock(mutex);
    const auto found = findIn(list, id);
    return found == list.end() ? std::nullopt : std::optional<Server>(*found);
}

std::optional<Camera> World::camera(const std::string &serverOf, int id, Server *owner) const
{
    const std::lock_guard<std::mutex> lock(mutex);
    const auto found = findIn(list, serverOf);
    if (found == list.end())
        return std::nullopt;
    const auto camera = found->cameras.find(id);
    if (camera == found->cameras.end())
        return std::nullopt;
    if (owner) {
        *owner = *found;
        owner->cameras.clear();
    }
    return camera->second;
}

std::vector<Server> World::servers() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return list;
}

std::set<int> World::scenes() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    std::set<int> result;
    for (const Server &server : list) {
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
bool World::changeCamera(const std::string &server, int id, Change change)
{
    return changeServer(server, [&](Server &owner) {
        const auto found = owner.cameras.find(id);
        if (found == owner.cameras.end())
            return false;
        change(found->second);
        return true;
    });
}

bool World::setCamera(const std::string &server, int id, const nlohmann::json &values)
{
    return changeCamera(server, id, [&](Camera &camera) { apply(values, &camera); });
}

bool World::setRecords(const std::string &server, int id,
                       std::shared_ptr<const std::vector<Record>> records)
{
    return changeCamera(server, id, [&](Camera &camera) { camera.records = std::move(records); });
}

bool World::setServer(const std::string &id, const nlohmann::json &values)
{
    return changeServer(id, [&](Server &server) {
        apply(values, &server);
        return true;
    });
}

int World::addCamera(const std::string &server, const std::string &name)
{
    int id = 0;
    changeServer(server, [&](Server &owner) {
        id = maker.addCameraTo(&owner);
        if (!name.empty())
            owner.cameras[id].name = name;
        return true;
    });
    return id;
}

bool World::removeCamera(const std::string &server, int id)
{
    return changeServer(server, [&](Server &owner) { return owner.cameras.erase(id) > 0; });
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
