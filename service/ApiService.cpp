// SPDX-License-Identifier: MIT
#include "service/ApiService.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <array>

#include "service/HttpStatus.h"
#include "service/RosterJson.h"

namespace ZorvaneService {

namespace {

const std::string sessionsPath = "/public/sessions";
const std::string versionPath = "/public/version/client_windows";
const std::string rosterPath = "/public/roster";
const std::string layoutsPath = "//layouts";
const std::string serversPath = "//public/servers/";
constexpr std::int64_t quarterTurn = 90;
constexpr const char *formType = "application/x-www-form-urlencoded";

HttpReply success(const nlohmann::json &response)
{
    return HttpReply::json(HttpStatus::Ok, {{"success", true}, {"response", response}});
}

HttpReply failure(int status, ApiService::Error code)
{
    return HttpReply::json(status,
                           {{"success", false}, {"response", {{"code", static_cast<int>(code)}}}});
}

bool isForm(const HttpRequest &request)
{
    return beginsWith(request.header("content-type"), formType);
}

/// True when `list` is an array of layouts as clients store them.
bool areLayouts(const nlohmann::json &list)
{
    return list.is_array() && std::all_of(list.begin(), list.end(), [](const auto &layout) {
               return layout.is_object() && layout.contains("id");
           });
}

} // namespace

void ApiService::setVersion(const std::string &newest)
{
    const std::lock_guard<std::mutex> lock(mutex);
    version = newest;
}

HttpReply ApiService::handle(const HttpRequest &request)
{
    const std::string &path = request.path;
    const bool get = request.method == "GET";
    const bool post = request.method == "POST";
    if (post && path == sessionsPath)
        return signIn(request);
    if (request.method == "DELETE" && beginsWith(path, sessionsPath + "/"))
        return signOut(request);
    if (get && path == versionPath) {
        const std::lock_guard<std::mutex> lock(mutex);
        return success({{"version", version}});
    }
    if (get && path == rosterPath)
        return isSignedIn(request) ? success(rosterJson(roster.servers()))
                                   : failure(HttpStatus::Forbidden, unknownSession);
    if (get && path == layoutsPath)
        return isSignedIn(request) ? success(accounts.layouts())
                                   : failure(HttpStatus::Forbidden, unknownSession);
    if (post && path == layoutsPath)
        return saveLayouts(request);
    if (post && beginsWith(path, serversPath))
        return rotate(request);
    return failure(HttpStatus::NotFound, notFound);
}

bool ApiService::isSignedIn(const HttpRequest &request) const
{
    return accounts.isSignedIn(request.parameters()["sessionId"]);
}

HttpReply ApiService::signIn(const HttpRequest &request)
{
    auto form = decodedItems(request.body, true);
    constexpr std::array<const char *, 4> needed{"clientType", "clientVersion", "login",
                                                 "password"};
    const bool whole = std::all_of(needed.begin(), needed.end(),
                                   [&](const char *key) { return form.count(key) == 1; });
    if (!isForm(request) || !whole)
        return failure(HttpStatus::BadRequest, malformedRequest);
    if (accounts.isRefused())
        return failure(HttpStatus::Forbidden, signInRefused);
    const std::string &login = form["login"];
    const std::string &password = form["password"];
    const std::string given = login + '\n' + password;
    if (!guard.admits(request.peer, given, accounts.isAccount(login, password)))
        return failure(HttpStatus::Forbidden, wrongPassword);
    return success({{"session_id", accounts.newSession()}});
}

HttpReply ApiService::signOut(const HttpRequest &request)
{
    const std::string session = request.path.substr(sessionsPath.size() + 1);
    if (!accounts.signOut(percentDecoded(session)))
        return failure(HttpStatus::NotFound, unknownSession);
    return success(nlohmann::json::object());
}

HttpReply ApiService::saveLayouts(const HttpRequest &request)
{
    if (!isSignedIn(request))
        return failure(HttpStatus::Forbidden, unknownSession);
    const auto list = nlohmann::json::parse(request.body, nullptr, false);
    if (!areLayouts(list))
        return failure(HttpStatus::BadRequest, malformedRequest);
    accounts.saveLayouts(list);
    return success(nlohmann::json::object());
}

HttpReply ApiService::rotate(const HttpRequest &request)
{
    // //public/servers/<server>/cameras/<camera>/rotation
    const std::string rest = request.path.substr(serversPath.size());
    const std::string middle = "/cameras/";
    const std::string end = "/rotation";
    const std::size_t at = rest.find(middle);
    if (at == std::string::npos || rest.size() < at + middle.size() + end.size() ||
        rest.compare(rest.size() - end.size(), end.size(), end) != 0)
        return failure(HttpStatus::NotFound, notFound);
    const std::string server = percentDecoded(rest.substr(0, at));
    const std::string camera =
        rest.substr(at + middle.size(), rest.size() - at - middle.size() - end.size());

    auto form = decodedItems(request.body, true);
    if (!isForm(request) || form.count("sessionId") == 0)
        return failure(HttpStatus::BadRequest, malformedRequest);
    if (!accounts.isSignedIn(form["sessionId"]))
        return failure(HttpStatus::Forbidden, unknownSession);
    constexpr std::int64_t none = INT64_MIN;
    const std::int64_t degrees = numberOr(form["degrees"], none);
    if (degrees == none || degrees % quarterTurn != 0)
        return failure(HttpStatus::BadRequest, malformedRequest);
    const int id = static_cast<int>(numberOr(camera, 0));
    if (!roster.setRotation({server, id}, static_cast<int>(degrees)))
        return failure(HttpStatus::NotFound, notFound);
    return success(nlohmann::json::object());
}

} // namespace ZorvaneService
