// SPDX-License-Identifier: MIT
#include "demo/World.h"

#include <algorithm>
#include <cstdio>
#include <utility>

#include "demo/Names.h"
#include "demo/Scene.h"
#include "demo/StripCode.h"

namespace ZorvaneDemo {

namespace {

constexpr int rosterWidth = 1280;
constexpr int rosterHeight = 720;
// Of each so many cameras, the one at the index has the trait.
constexpr int traitPeriod = 14;
constexpr int offlineIndex = 6;
constexpr int unpaidIndex = 9;
constexpr int withoutArchiveIndex = 3;
constexpr int withoutLiveIndex = 11;
constexpr int rotatedIndex = 7;
constexpr int mirroredIndex = 4;
constexpr int ptzPeriod = 4;
// Of each so many servers, the one at the index is a camera itself or has no camera.
constexpr int serverPeriod = 5;
constexpr int cameraServerIndex = 3;
constexpr int emptyServerIndex = 4;
constexpr int offlineServerPeriod = 9;

std::string serverId(unsigned seed, int index)
{
    // A spread of the index that never meets itself below 2^31 servers.
    const unsigned mixed = (static_cast<unsigned>(index) + seed * 4096u) * 2654435761u;
    char text[32];
    std::snprintf(text, sizeof text, "srv-%08x", mixed);
    return text;
}

void giveTraits(Camera *camera, int index)
{
    const int trait = index % traitPeriod;
    camera->online = trait != offlineIndex;
    camera->paid = trait != unpaidIndex;
    camera->archive = trait != withoutArchiveIndex;
    camera->live = trait != withoutLiveIndex;
    camera->ptz = index % ptzPeriod == 0;
    camera->rotation = trait == rotatedIndex ? 180 : 0;
    camera->mirror = trait == mirroredIndex;
}

nlohmann::json rights(const Camera &camera)
{
    auto list = nlohmann::json::array();
    if (camera.live)
        list.push_back("live");
    if (camera.archive)
        list.push_back("archive");
    if (camera.ptz)
        list.push_back("ptz");
    return list;
}

nlohmann::json rosterCamera(const Server &server, const Camera &camera)
{
    return {{"id", camera.id},
            {"name", camera.name},
            {"vcodec", "h264"},
            {"width", rosterWidth},
            {"height", rosterHeight},
            {"rotation", camera.rotation},
            {"mirror", camera.mirror},
            {"online", camera.online && server.online},
            {"services", {{"enabled", {{"active", camera.paid}}}}},
            {"rights", rights(camera)}};
}

nlohmann::json rosterServer(const Server &server)
{
    auto cameras = nlohmann::json::object();
    for (const auto &[id, camera] : server.cameras)
        cameras[std::to_string(id)] = rosterCamera(server, camera);
    return {{"id", server.id},
            {"name", server.name},
            {"owner", server.owner},
            {"live", server.live},
            {"archive", server.archive},
            {"online", server.online},
            {"info",
             {{"functions", {"speed_play", "arc_search"}},
              {"build_type", server.isCamera ? "zorvane-camera" : "zorvane-server"}}},
            {"cameras", cameras}};
}

/// How many cameras the server at `index` has when `cameras` are shared out.
std::vector<int> shares(const WorldOptions &options)
{
    std::vector<int> result(static_cast<std::size_t>(options.servers), 0);
    std::vector<std::size_t> normal;
    int left = options.cameras;
    for (std::size_t i = 0; i < result.size(); ++i) {
        const int kind = static_cast<int>(i) % serverPeriod;
        if (kind == cameraServerIndex && left > 1) {
            result[i] = 1;
            --left;
        } else if (kind != emptyServerIndex && kind != cameraServerIndex) {
            normal.push_back(i);
        }
    }
    for (int i = 0; i < left && !normal.empty(); ++i)
        ++result[normal[static_cast<std::size_t>(i) % normal.size()]];
    return result;
}

} // namespace

World::World(const WorldOptions &worldOptions) : options(worldOptions)
{
    const std::vector<int> counts = shares(options);
    int index = 0;
    for (int i = 0; i < options.servers; ++i) {
        Server server;
        server.id = serverId(options.seed, i);
        server.name = serverName(options.seed, i);
        server.isCamera = i % serverPeriod == cameraServerIndex;
        server.owner = i % serverPeriod != 2;
        server.online = options.plain || i % offlineServerPeriod != offlineServerPeriod - 1;
        for (int id = 1; id <= counts[static_cast<std::size_t>(i)]; ++id, ++index) {
            Camera camera = newCamera();
            camera.id = id;
            if (!options.plain)
                giveTraits(&camera, index);
            server.cameras[id] = camera;
        }
        list.push_back(std::move(server));
    }
    for (int i = 0; i < options.lanServers; ++i) {
        Server server;
        server.name = lanServerName(i);
        server.lan = true;
        server.password = lanPassword;
        for (int id = 1; id <= camerasPerLanServer; ++id) {
            Camera camera = newCamera();
            camera.id = id;
            server.cameras[id] = camera;
        }
        list.push_back(std::move(server));
    }
    nextServer = options.servers;
    original = list;
    // Cameras that come later show what is already there.
    options.scenes = std::clamp(nextNumber - 1, 1, options.scenes);
}

Camera World::newCamera()
{
    Camera camera;
    camera.number = std::min(nextNumber, StripCode::maximumCamera);
    camera.scene = (nextNumber - 1) % options.scenes;
    camera.name = cameraName(options.seed, nextNumber - 1);
    ++nextNumber;
    return camera;
}

void World::setLanPorts(const std::vector<int> &ports)
{
    const std::lock_guard<std::mutex> lock(mutex);
    std::size_t next = 0;
    for (Server &server : list) {
        if (server.lan && next < ports.size())
            server.id = "127.0.0.1:" + std::to_string(ports[next++]);
    }
    original = list;
}

const Server *World::find(const std::string &id) const
{
    const auto found = std::find_if(list.begin(), list.end(),
                                    [&](const Server &server) { return server.id == id; });
    return found == list.end() ? nullptr : &*found;
}

Server *World::find(const std::string &id)
{
    return const_cast<Server *>(std::as_const(*this).find(id));
}

std::optional<Server> World::server(const std::string &id) const
{
    const std::lock_guard<std::mutex> lock(mutex);
    const Server *found = find(id);
    return found ? std::optional<Server>(*found) : std::nullopt;
}

std::optional<Camera> World::camera(const std::string &serverOf, int id, Server *owner) const
{
    const std::lock_guard<std::mutex> lock(mutex);
    const Server *found = find(serverOf);
    if (!found)
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

nlohmann::json World::roster() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    auto result = nlohmann::json::object();
    for (const Server &server : list) {
        if (!server.lan)
            result[server.id] = rosterServer(server);
    }
    return result;
}

nlohmann::json World::describe() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    auto result = nlohmann::json::array();
    for (const Server &server : list) {
        auto cameras = nlohmann::json::array();
        for (const auto &[id, camera] : server.cameras) {
            cameras.push_back({{"id", id},
                               {"number", camera.number},
                               {"scene", camera.scene},
                               {"name", camera.name},
                               {"online", camera.online},
                               {"paid", camera.paid},
                               {"rights", rights(camera)},
                               {"rotation", camera.rotation},
                               {"mirror", camera.mirror}});
        }
        result.push_back({{"id", server.id},
                          {"name", server.name},
                          {"online", server.online},
                          {"lan", server.lan},
                          {"password", server.password},
                          {"cameras", cameras}});
    }
    return {{"servers", result}};
}

nlohmann::json World::localRoster() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    auto result = nlohmann::json::array();
    for (const Server &server : list) {
        if (!server.lan)
            continue;
        const std::size_t colon = server.id.find(':');
        result.push_back({{"ip", server.id.substr(0, colon)},
                          {"port", std::stoi(server.id.substr(colon + 1))},
                          {"name", server.name},
                          {"password", server.password}});
    }
    return result;
}

bool World::setCamera(const std::string &serverOf, int id, const nlohmann::json &values)
{
    const std::lock_guard<std::mutex> lock(mutex);
    Server *found = find(serverOf);
    if (!found || found->cameras.count(id) == 0)
        return false;
    Camera &camera = found->cameras[id];
    camera.online = values.value("online", camera.online);
    camera.paid = values.value("paid", camera.paid);
    camera.name = values.value("name", camera.name);
    camera.rotation = values.value("rotation", camera.rotation);
    camera.mirror = values.value("mirror", camera.mirror);
    if (values.contains("rights")) {
        const auto &granted = values["rights"];
        const auto has = [&](const char *right) {
            return std::find(granted.begin(), granted.end(), right) != granted.end();
        };
        camera.live = has("live");
        camera.archive = has("archive");
        camera.ptz = has("ptz");
    }
    ++changes;
    return true;
}

bool World::setRecords(const std::string &serverOf, int id,
                       std::shared_ptr<const std::vector<Record>> records)
{
    const std::lock_guard<std::mutex> lock(mutex);
    Server *found = find(serverOf);
    if (!found || found->cameras.count(id) == 0)
        return false;
    found->cameras[id].records = std::move(records);
    ++changes;
    return true;
}

bool World::setServer(const std::string &id, const nlohmann::json &values)
{
    const std::lock_guard<std::mutex> lock(mutex);
    Server *found = find(id);
    if (!found)
        return false;
    found->online = values.value("online", found->online);
    found->name = values.value("name", found->name);
    found->live = values.value("live", found->live);
    found->archive = values.value("archive", found->archive);
    ++changes;
    return true;
}

int World::addCamera(const std::string &serverOf, const std::string &name)
{
    const std::lock_guard<std::mutex> lock(mutex);
    Server *found = find(serverOf);
    if (!found)
        return 0;
    Camera camera = newCamera();
    camera.id = found->cameras.empty() ? 1 : found->cameras.rbegin()->first + 1;
    if (!name.empty())
        camera.name = name;
    found->cameras[camera.id] = camera;
    ++changes;
    return camera.id;
}

bool World::removeCamera(const std::string &serverOf, int id)
{
    const std::lock_guard<std::mutex> lock(mutex);
    Server *found = find(serverOf);
    if (!found || found->cameras.erase(id) == 0)
        return false;
    ++changes;
    return true;
}

std::string World::addServer(const std::string &name, int cameras)
{
    const std::lock_guard<std::mutex> lock(mutex);
    Server server;
    server.id = serverId(options.seed, nextServer);
    server.name = name.empty() ? serverName(options.seed, nextServer) : name;
    ++nextServer;
    for (int id = 1; id <= cameras; ++id) {
        Camera camera = newCamera();
        camera.id = id;
        server.cameras[id] = camera;
    }
    list.push_back(server);
    ++changes;
    return server.id;
}

bool World::removeServer(const std::string &id)
{
    const std::lock_guard<std::mutex> lock(mutex);
    const auto found = std::find_if(list.begin(), list.end(),
                                    [&](const Server &server) { return server.id == id; });
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
