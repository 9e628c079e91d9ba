// SPDX-License-Identifier: MIT
#include "service/RosterJson.h"

#include <cstddef>
#include <string>

namespace ZorvaneService {

namespace {

nlohmann::json rosterCamera(const Server &server, const Camera &camera)
{
    return {{"id", camera.id},
            {"name", camera.name},
            {"vcodec", "h264"},
            {"width", camera.size.width},
            {"height", camera.size.height},
            {"rotation", camera.rotation},
            {"mirror", camera.mirror},
            {"online", camera.online && server.online},
            {"services", {{"enabled", {{"active", camera.paid}}}}},
            {"rights", rightsJson(camera)}};
}

nlohmann::json rosterServer(const Server &server, const std::vector<Camera> &list)
{
    auto cameras = nlohmann::json::object();
    for (const Camera &camera : list)
        cameras[std::to_string(camera.id)] = rosterCamera(server, camera);
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

} // namespace

nlohmann::json rightsJson(const Camera &camera)
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

nlohmann::json rosterJson(const std::vector<ServerWithCameras> &servers)
{
    auto result = nlohmann::json::object();
    for (const auto &[server, cameras] : servers) {
        if (!server.lan)
            result[server.id] = rosterServer(server, cameras);
    }
    return result;
}

nlohmann::json localRosterJson(const std::vector<ServerWithCameras> &servers)
{
    auto result = nlohmann::json::array();
    for (const auto &[server, cameras] : servers) {
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

} // namespace ZorvaneService
