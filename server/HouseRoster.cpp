// SPDX-License-Identifier: MIT
#include "server/HouseRoster.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <fstream>

#include "server/Log.h"
#include "service/OwnerFile.h"

namespace ZorvaneServer {

using namespace ZorvaneService;

namespace {

ZorvaneService::Server cloudServer()
{
    ZorvaneService::Server server;
    server.id = "house";
    server.name = "This house";
    return server;
}

int numberIn(const nlohmann::json &values, const char *key)
{
    const auto found = values.find(key);
    return found != values.end() && found->is_number_integer() ? found->get<int>() : 0;
}

} // namespace

HouseRoster::HouseRoster(const std::vector<std::string> &names, std::string host, int port,
                         std::string password, std::string file)
    : stateFile(std::move(file)), lanPort(port)
{
    lan.id = std::move(host) + ':' + std::to_string(port);
    lan.name = "Cameras";
    lan.lan = true;
    lan.password = std::move(password);
    readState();
    int highest = 0;
    for (const auto &[name, known] : kept)
        highest = std::max(highest, known.id);
    const std::size_t before = kept.size();
    for (const std::string &name : names) {
        const auto [known, isNew] = kept.try_emplace(name);
        if (isNew)
            known->second.id = ++highest;
        Camera camera;
        camera.id = known->second.id;
        camera.name = name;
        camera.rotation = known->second.rotation;
        camera.online = false;
        cameras.push_back(camera);
    }
    if (kept.size() != before)
        store();
}

void HouseRoster::readState()
{
    std::ifstream in(stateFile);
    if (!in)
        return;
    const auto stored = nlohmann::json::parse(in, nullptr, false);
    if (!stored.is_object())
        Log::say(stateFile + ": damaged, so cameras are numbered anew");
    for (const auto &[name, values] : stored.items()) {
        const Kept known{numberIn(values, "id"), numberIn(values, "rotation")};
        if (known.id > 0)
            kept[name] = known;
    }
}

/// The caller holds the lock.
void HouseRoster::store() const
{
    auto stored = nlohmann::json::object();
    for (const auto &[name, known] : kept)
        stored[name] = {{"id", known.id}, {"rotation", known.rotation}};
    if (!writeOwnerFile(stateFile, stored.dump(2) + '\n'))
        Log::say("cannot write " + stateFile);
}

std::vector<ServerWithCameras> HouseRoster::servers() const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return {{cloudServer(), {}}, {lan, cameras}};
}

/// The caller holds the lock, and what is found is read under it.
const HouseRoster::Camera *HouseRoster::find(const CameraId &id) const
{
    const auto found = std::find_if(cameras.begin(), cameras.end(), [&](const Camera &camera) {
        return id.server == lan.id && camera.id == id.camera;
    });
    return found == cameras.end() ? nullptr : &*found;
}

std::optional<CameraOfServer> HouseRoster::camera(const CameraId &id) const
{
    const std::lock_guard<std::mutex> lock(mutex);
    const Camera *found = find(id);
    return found ? std::optional<CameraOfServer>({lan, *found}) : std::nullopt;
}

std::optional<ServerWithCameras> HouseRoster::lanServer(int port) const
{
    const std::lock_guard<std::mutex> lock(mutex);
    return port == lanPort ? std::optional<ServerWithCameras>({lan, cameras}) : std::nullopt;
}

std::string HouseRoster::nameOf(const CameraId &id) const
{
    const std::lock_guard<std::mutex> lock(mutex);
    const Camera *found = find(id);
    return found ? found->name : std::string();
}

bool HouseRoster::setRotation(const CameraId &id, int degrees)
{
    const std::lock_guard<std::mutex> lock(mutex);
    const Camera *found = find(id);
    if (!found)
        return false;
    cameras[static_cast<std::size_t>(found - cameras.data())].rotation = degrees;
    kept[found->name].rotation = degrees;
    store();
    ++changes;
    return true;
}

void HouseRoster::setOnline(std::size_t camera, bool online)
{
    const std::lock_guard<std::mutex> lock(mutex);
    cameras[camera].online = online;
    ++changes;
}

void HouseRoster::setSize(std::size_t camera, PictureSize size)
{
    const std::lock_guard<std::mutex> lock(mutex);
    cameras[camera].size = size;
    ++changes;
}

} // namespace ZorvaneServer
