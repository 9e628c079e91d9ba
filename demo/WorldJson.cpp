// SPDX-License-Identifier: MIT
#include "demo/WorldJson.h"

#include <algorithm>

#include "service/RosterJson.h"

namespace ZorvaneDemo {

namespace {

nlohmann::json worldCamera(const InventedCamera &camera)
{
    return {{"id", camera.id},
            {"number", camera.number},
            {"scene", camera.scene},
            {"name", camera.name},
            {"online", camera.online},
            {"paid", camera.paid},
            {"rights", rightsJson(camera)},
            {"rotation", camera.rotation},
            {"mirror", camera.mirror}};
}

} // namespace

nlohmann::json worldJson(const std::vector<InventedServer> &servers)
{
    auto result = nlohmann::json::array();
    for (const InventedServer &server : servers) {
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

void setValues(const nlohmann::json &values, Camera *camera)
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

void setValues(const nlohmann::json &values, Server *server)
{
    server->online = values.value("online", server->online);
    server->name = values.value("name", server->name);
    server->live = values.value("live", server->live);
    server->archive = values.value("archive", server->archive);
}

} // namespace ZorvaneDemo
