// SPDX-License-Identifier: MIT
#include "demo/WorldMaker.h"

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <utility>

#include "demo/Names.h"
#include "demo/PictureSizes.h"
#include "demo/StripCode.h"

namespace ZorvaneDemo {

namespace {

// Of each so many cameras, the one at the index has the trait.
constexpr int traitPeriod = 14;
constexpr int offlineIndex = 6;
constexpr int unpaidIndex = 9;
constexpr int withoutArchiveIndex = 3;
constexpr int withoutLiveIndex = 11;
constexpr int rotatedIndex = 7;
constexpr int mirroredIndex = 4;
constexpr int ptzPeriod = 4;
// Of each so many servers, the one at the index is a camera itself, has no camera or
// belongs to someone else.
constexpr int serverPeriod = 5;
constexpr int cameraServerIndex = 3;
constexpr int emptyServerIndex = 4;
constexpr int guestServerIndex = 2;
constexpr int offlineServerPeriod = 9;

std::string serverId(unsigned seed, int index)
{
    // A spread of the index that never meets itself below 2^31 servers.
    const unsigned mixed = (static_cast<unsigned>(index) + seed * 4096u) * 2654435761u;
    char text[32];
    std::snprintf(text, sizeof text, "srv-%08x", mixed);
    return text;
}

void giveTrait(InventedCamera *camera, int index)
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

void giveTraits(InventedServer *server, int index, int camerasBefore)
{
    server->online = index % offlineServerPeriod != offlineServerPeriod - 1;
    for (auto &[id, camera] : server->cameras)
        giveTrait(&camera, camerasBefore++);
}

/// How many of the cameras each server gets.
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

std::vector<InventedServer> WorldMaker::makeAll()
{
    std::vector<InventedServer> servers;
    int camerasBefore = 0;
    for (const int count : shares(options)) {
        const int index = nextServer;
        InventedServer server = makeServer(count);
        server.isCamera = index % serverPeriod == cameraServerIndex;
        server.owner = index % serverPeriod != guestServerIndex;
        if (!options.plain)
            giveTraits(&server, index, camerasBefore);
        camerasBefore += count;
        servers.push_back(std::move(server));
    }
    for (int i = 0; i < options.lanServers; ++i)
        servers.push_back(makeLanServer(i));
    // Cameras that come later show what is already there.
    options.scenes = std::clamp(nextNumber - 1, 1, options.scenes);
    return servers;
}

InventedServer WorldMaker::makeServer(int cameras)
{
    InventedServer server;
    server.id = serverId(options.seed, nextServer);
    server.name = serverName(options.seed, nextServer);
    ++nextServer;
    for (int i = 0; i < cameras; ++i)
        addCameraTo(&server);
    return server;
}

InventedServer WorldMaker::makeLanServer(int index)
{
    InventedServer server;
    server.name = lanServerName(index);
    server.lan = true;
    server.password = lanPassword;
    for (int i = 0; i < camerasPerLanServer; ++i)
        addCameraTo(&server);
    return server;
}

int WorldMaker::addCameraTo(InventedServer *server)
{
    InventedCamera camera;
    camera.id = server->cameras.empty() ? 1 : server->cameras.rbegin()->first + 1;
    camera.number = std::min(nextNumber, StripCode::maximumCamera);
    camera.scene = (nextNumber - 1) % options.scenes;
    camera.size = pictureSizes.back();
    camera.name = cameraName(options.seed, nextNumber - 1);
    ++nextNumber;
    server->cameras[camera.id] = camera;
    return camera.id;
}

} // namespace ZorvaneDemo
