// SPDX-License-Identifier: MIT
#include "demo/Access.h"

#include "service/Loopback.h"

namespace ZorvaneDemo {

namespace {

constexpr int forbidden = 403;
constexpr int notFound = 404;

Access::Result refused(int status)
{
    Access::Result result;
    result.status = status;
    return result;
}

int cameraId(std::map<std::string, std::string> &parameters)
{
    return static_cast<int>(numberOr(parameters["camera"], 0));
}

/// With the colon; empty when there is none.
std::string portOf(const std::string &address)
{
    const std::size_t colon = address.rfind(':');
    return colon == std::string::npos ? std::string() : address.substr(colon);
}

} // namespace

Access::Result Access::check(const HttpRequest &request, Need need) const
{
    // A LAN recorder has its streams on its own port, beside everything else.
    return request.isForLanServer() ? checkLan(request, need) : checkCloud(request, need);
}

Access::Result Access::checkCloud(const HttpRequest &request, Need need) const
{
    auto parameters = request.parameters();
    if (!accounts.isSignedIn(parameters["sessionId"]))
        return refused(forbidden);
    Server server;
    const auto camera = world.camera(parameters["server"], cameraId(parameters), &server);
    if (!camera || server.lan)
        return refused(notFound);
    const bool live = need == Need::Live;
    const bool shared = live ? camera->live && server.live : camera->archive && server.archive;
    if (!shared || !camera->paid)
        return refused(forbidden);
    if (!server.online || (live && !camera->online))
        return refused(notFound);
    Result result;
    result.camera = *camera;
    return result;
}

Access::Result Access::checkLan(const HttpRequest &request, Need need) const
{
    auto parameters = request.parameters();
    Server server;
    const std::string id = lanServerId(request.localPort);
    const auto camera = world.camera(id, cameraId(parameters), &server);
    // A recorder calls itself 1 and also answers to its address, by whatever host name.
    const bool isMeant = parameters["server"] == "1" || portOf(parameters["server"]) == portOf(id);
    if (!camera || !server.online || !isMeant)
        return refused(notFound);
    if (!isPassword(server, parameters["sessionId"]))
        return refused(forbidden);
    if (need == Need::Live && !camera->online)
        return refused(notFound);
    Result result;
    result.camera = *camera;
    return result;
}

bool Access::isPassword(const Server &server, const std::string &text)
{
    return text == server.password;
}

} // namespace ZorvaneDemo
