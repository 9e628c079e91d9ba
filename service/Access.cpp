// SPDX-License-Identifier: MIT
#include "service/Access.h"

#include <algorithm>

namespace ZorvaneService {

namespace {

Access::Result refused(int status)
{
    return {status, {}};
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

bool hasPassword(const HttpRequest &request, const Server &server)
{
    return PasswordGuard::areEqual(request.parameters()["sessionId"], server.password);
}

} // namespace

Access::Result Access::check(const HttpRequest &request, Need need) const
{
    return check(request, need, Asked::First);
}

bool Access::isStillGranted(const HttpRequest &request, Need need) const
{
    return check(request, need, Asked::Again).isGranted();
}

Access::Result Access::check(const HttpRequest &request, Need need, Asked asked) const
{
    // A LAN recorder has its streams on its own port, beside everything else.
    return request.isForLanServer() ? checkLan(request, need, asked) : checkCloud(request, need);
}

Access::Result Access::checkCloud(const HttpRequest &request, Need need) const
{
    auto parameters = request.parameters();
    if (!accounts.isSignedIn(parameters["sessionId"]))
        return refused(HttpStatus::Forbidden);
    const auto found = roster.camera({parameters["server"], cameraId(parameters)});
    if (!found || found->server.lan)
        return refused(HttpStatus::NotFound);
    const auto &[server, camera] = *found;
    const bool live = need == Need::Live;
    const bool shared = live ? camera.live && server.live : camera.archive && server.archive;
    if (!shared || !camera.paid)
        return refused(HttpStatus::Forbidden);
    if (!server.online || (live && !camera.online))
        return refused(HttpStatus::NotFound);
    return {HttpStatus::Ok, *found};
}

Access::Result Access::checkLan(const HttpRequest &request, Need need, Asked asked) const
{
    auto parameters = request.parameters();
    const auto owner = roster.lanServer(request.localPort);
    if (!owner || !owner->server.online)
        return refused(HttpStatus::NotFound);
    const auto &[server, cameras] = *owner;
    // First of all: who doesn't know it is not to learn which cameras there are.
    if (!(asked == Asked::First ? opens(request, server) : hasPassword(request, server)))
        return refused(HttpStatus::Forbidden);
    const auto camera =
        std::find_if(cameras.begin(), cameras.end(),
                     [id = cameraId(parameters)](const Camera &one) { return one.id == id; });
    // A recorder calls itself 1 and also answers to its address, by whatever host name.
    const bool isMeant =
        parameters["server"] == "1" || portOf(parameters["server"]) == portOf(server.id);
    if (camera == cameras.end() || !isMeant)
        return refused(HttpStatus::NotFound);
    if (need == Need::Live && !camera->online)
        return refused(HttpStatus::NotFound);
    return {HttpStatus::Ok, {server, *camera}};
}

bool Access::opens(const HttpRequest &request, const Server &server) const
{
    return guard.admits(request.peer, request.parameters()["sessionId"],
                        hasPassword(request, server));
}

} // namespace ZorvaneService
