// SPDX-License-Identifier: MIT
#include "demo/LanService.h"

#include <nlohmann/json.hpp>

#include "demo/Access.h"
#include "demo/PictureSizes.h"
#include "service/Loopback.h"

namespace ZorvaneDemo {

namespace {

nlohmann::json serverInformation(const Server &server)
{
    return {{"name", server.name}, {"functions", {"arc_search", "speed_play"}}};
}

nlohmann::json streamInformation(const Server &server)
{
    const PictureSize size = pictureSizes.back();
    auto list = nlohmann::json::array();
    for (const auto &[id, camera] : server.cameras) {
        list.push_back({{"id", id},
                        {"name", camera.name},
                        {"status", camera.online ? 1 : 0},
                        {"width", size.width},
                        {"height", size.height},
                        {"vcodec", "h264"}});
    }
    return list;
}

} // namespace

HttpReply LanService::handle(const HttpRequest &request) const
{
    const auto server = world.server(lanServerId(request.localPort));
    if (!server || !server->online) {
        HttpReply reply;
        reply.hangUp = true;
        return reply;
    }
    if (request.method != "GET")
        return HttpReply::refusal(405);
    if (request.path == "/vs_info/" || request.path == "/streams/info")
        return information(request, *server);
    if (request.path == "/preview/live")
        return streaming.preview(request);
    if (request.path == "/archive/list")
        return streaming.archiveList(request);
    if (request.path == "/archive/days")
        return streaming.archiveDays(request);
    return flv.handle(request);
}

HttpReply LanService::information(const HttpRequest &request, const Server &server) const
{
    auto parameters = request.parameters();
    if (parameters["server"] != "1")
        return HttpReply::refusal(404);
    if (!Access::isPassword(server, parameters["sessionId"]))
        return HttpReply::refusal(403);
    return HttpReply::json(200, request.path == "/vs_info/" ? serverInformation(server)
                                                            : streamInformation(server));
}

} // namespace ZorvaneDemo
