// SPDX-License-Identifier: MIT
#include "service/LanService.h"

#include <nlohmann/json.hpp>

#include "service/HttpStatus.h"

namespace ZorvaneService {

namespace {

nlohmann::json serverInformation(const Server &server)
{
    return {{"name", server.name}, {"functions", {"arc_search", "speed_play"}}};
}

nlohmann::json streamInformation(const std::vector<Camera> &cameras)
{
    auto list = nlohmann::json::array();
    for (const Camera &camera : cameras) {
        list.push_back({{"id", camera.id},
                        {"name", camera.name},
                        {"status", camera.online ? 1 : 0},
                        {"width", camera.size.width},
                        {"height", camera.size.height},
                        {"vcodec", "h264"}});
    }
    return list;
}

} // namespace

HttpReply LanService::handle(const HttpRequest &request) const
{
    const auto owner = roster.lanServer(request.localPort);
    if (!owner || !owner->server.online) {
        HttpReply reply;
        reply.hangUp = true;
        return reply;
    }
    if (request.method != "GET")
        return HttpReply::refusal(HttpStatus::MethodNotAllowed);
    if (request.path == "/vs_info/" || request.path == "/streams/info")
        return information(request, *owner);
    if (request.path == "/preview/live")
        return streaming.preview(request);
    if (request.path == "/archive/list")
        return streaming.archiveList(request);
    if (request.path == "/archive/days")
        return streaming.archiveDays(request);
    return flv.handle(request);
}

HttpReply LanService::information(const HttpRequest &request, const ServerWithCameras &owner) const
{
    if (request.parameters()["server"] != "1")
        return HttpReply::refusal(HttpStatus::NotFound);
    if (!access.opens(request, owner.server))
        return HttpReply::refusal(HttpStatus::Forbidden);
    return HttpReply::json(HttpStatus::Ok, request.path == "/vs_info/"
                                               ? serverInformation(owner.server)
                                               : streamInformation(owner.cameras));
}

} // namespace ZorvaneService
