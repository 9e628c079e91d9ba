// SPDX-License-Identifier: MIT
#include "demo/ControlService.h"

#include <memory>
#include <stdexcept>
#include <utility>
#include <vector>

#include "demo/WorldJson.h"
#include "service/HttpStatus.h"
#include "service/RosterJson.h"

namespace ZorvaneDemo {

namespace {

HttpReply done(bool good)
{
    return good ? HttpReply::json(HttpStatus::Ok, {{"ok", true}})
                : HttpReply::json(HttpStatus::NotFound, {{"error", "no such object"}});
}

HttpReply unknown()
{
    return HttpReply::json(HttpStatus::NotFound, {{"error", "no such command"}});
}

/// Reads [[start, end], ...]; throws when these are no records.
std::vector<Record> recordsFrom(const nlohmann::json &list)
{
    std::vector<Record> records;
    std::int64_t freeFrom = 0;
    for (const auto &[start, end] :
         list.get<std::vector<std::pair<std::int64_t, std::int64_t>>>()) {
        if (start < freeFrom || end <= start || end > largestTime)
            throw std::invalid_argument("records must be ascending and apart");
        records.push_back({start, end});
        freeFrom = end;
    }
    return records;
}

} // namespace

HttpReply ControlService::handle(const HttpRequest &request)
{
    if (request.method == "GET")
        return show(request);
    if (request.method != "POST")
        return unknown();
    const auto body =
        nlohmann::json::parse(request.body.empty() ? "{}" : request.body, nullptr, false);
    if (!body.is_object())
        return HttpReply::json(HttpStatus::BadRequest, {{"error", "the body is no JSON object"}});
    try {
        return change(request.path, body);
    } catch (const std::exception &failure) {
        return HttpReply::json(HttpStatus::BadRequest, {{"error", failure.what()}});
    }
}

HttpReply ControlService::show(const HttpRequest &request)
{
    if (request.path == "/world")
        return HttpReply::json(HttpStatus::Ok, worldJson(world.everything()));
    if (request.path == "/local-roster")
        return HttpReply::json(HttpStatus::Ok, {{"roster", localRosterJson(world.servers())}});
    if (request.path == "/requests")
        return HttpReply::json(HttpStatus::Ok, log.describe(request.parameters()["path"]));
    if (request.path == "/faults")
        return HttpReply::json(HttpStatus::Ok, {{"faults", faults.describe()}});
    if (request.path == "/streams")
        return HttpReply::json(HttpStatus::Ok, {{"open", service.flv.openStreams()}});
    return unknown();
}

HttpReply ControlService::change(const std::string &path, const nlohmann::json &body)
{
    if (beginsWith(path, "/cameras/"))
        return changeCameras(path, body);
    if (beginsWith(path, "/servers/"))
        return changeServers(path, body);
    if (beginsWith(path, "/faults/"))
        return changeFaults(path, body);
    if (path == "/sign-in/set") {
        accounts.setRefused(body.at("refuse"));
    } else if (path == "/sessions/drop") {
        accounts.dropSessions();
    } else if (path == "/version/set") {
        service.api.setVersion(body.at("version"));
    } else if (path == "/requests/clear") {
        log.clear();
    } else if (path == "/reset") {
        faults.clear();
        accounts.setRefused(false);
        log.clear();
        world.reset();
    } else {
        return unknown();
    }
    return done(true);
}

HttpReply ControlService::changeCameras(const std::string &path, const nlohmann::json &body)
{
    if (path == "/cameras/add") {
        const int id = world.addCamera(body.at("server"), body.value("name", ""));
        return id > 0 ? HttpReply::json(HttpStatus::Ok, {{"camera", id}}) : done(false);
    }
    const CameraId camera{body.at("server"), body.at("camera")};
    if (path == "/cameras/set")
        return done(world.setCamera(camera, body));
    if (path == "/cameras/archive") {
        std::shared_ptr<const std::vector<Record>> records;
        if (body.contains("records"))
            records = std::make_shared<const std::vector<Record>>(recordsFrom(body["records"]));
        return done(world.setRecords(camera, std::move(records)));
    }
    if (path == "/cameras/remove")
        return done(world.removeCamera(camera));
    return unknown();
}

HttpReply ControlService::changeServers(const std::string &path, const nlohmann::json &body)
{
    if (path == "/servers/add")
        return HttpReply::json(
            HttpStatus::Ok,
            {{"server", world.addServer(body.value("name", ""), body.value("cameras", 0))}});
    const std::string server = body.at("server");
    if (path == "/servers/set")
        return done(world.setServer(server, body));
    if (path == "/servers/remove")
        return done(world.removeServer(server));
    return unknown();
}

HttpReply ControlService::changeFaults(const std::string &path, const nlohmann::json &body)
{
    if (path == "/faults/add") {
        const auto fault = Fault::fromJson(body);
        if (!fault)
            return HttpReply::json(HttpStatus::BadRequest, {{"error", "no such kind of fault"}});
        return HttpReply::json(HttpStatus::Ok, {{"fault", faults.add(*fault)}});
    }
    if (path == "/faults/remove")
        return done(faults.remove(body.at("fault")));
    if (path == "/faults/clear") {
        faults.clear();
        return done(true);
    }
    return unknown();
}

} // namespace ZorvaneDemo
