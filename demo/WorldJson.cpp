// SPDX-License-Identifier: MIT
#include "demo/WorldJson.h"

#include <algorithm>
#include <cstddef>
#include <string>

#include "demo/PictureSizes.h"

namespace ZorvaneDemo {

namespace {

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
    const PictureSize size = pictureSizes.back();
    return {{"id", camera.id},
            {"name", camera.name},
            {"vcodec", "h264"},
            {"width", size.width},
            {"height", size.height},
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

nlohmann::json worldCamera(const Camera &camera)
{
    return {{"id", camera.id},          {"number", camera.number},     {"scene", camera.scene},
            {"name", camera.name},      {"online", camera.online},     {"paid", camera.paid},
            {"rights", rights(camera)}, {"rotation", camera.rotation}, {"mirror", camera.mirror}};
}

} // namespace

nlohmann::json rosterJson(const std::vector<Server> &servers)
{
    auto result = nlohmann::json::object();
    for (const Server &server : servers) {
        if (!server.lan)
            result[server.id] = rosterServer(server);
    }
    return result;
}

nlohmann::json localRosterJson(const std::vector<Server> &servers)
{
    auto result = nlohmann::json::array();
    for (const Server &server : servers) {
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

nlohmann::json worldJson(const std::vector<Server> &servers)
{
    auto result = nlohmann::json::array();
    for (const Server &server : servers) {
        auto cameras = nlohmann::json::array();
        for (const auto &[id, camera] : server.cameras)
            cameras.push_back(worldCamera(camera));
        result.push_back({{"id", server.id},
                          {"name", server.name},
                          {"online", server.online},
                          {"lan", server.lan},
                          {"password", server.password},
                          {"cameras", cameras}});
    }
    return {{"servers", result}};
}

void apply(const nlohmann::json &values, Camera *camera)
{
    camera->online = values.value("online", camera->online);
    camera->paid = values.value("paid", camera->paid);
    camera->name = values.value("name", camera->name);
    camera->rotation = values.value("rotation", camera->rotation);
    camera->mirror = values.value("mirror", camera->mirror);
    if (values.contains("rights")) {
        const auto &granted = values["rights"];
        const auto has = [&](const char *right) {
            return std::find(granted.begin(), granted.end(), right) != granted.end();
        };
        camera->live = has("live");
        camera->archive = has("archive");
        camera->ptz = has("ptz");
    }
}

void apply(const nlohmann::json &values, Server *server)
{
    server->online = values.value("online", server->online);
    server->name = values.value("name", server->name);
    server->live = values.value("live", server->live);
    server->archive = values.value("archive", server->archive);
}

} // namespace ZorvaneDemo
