// SPDX-License-Identifier: MIT
#pragma once

#include <nlohmann/json.hpp>

#include "demo/Faults.h"
#include "demo/RequestLog.h"
#include "demo/ServiceWords.h"
#include "demo/World.h"
#include "service/Accounts.h"
#include "service/Http.h"
#include "service/VideoService.h"

namespace ZorvaneDemo {

/// What tests ask of the service behind its back; docs/demo-service.md lists it.
class ControlService
{
public:
    ControlService(World &cameras, Accounts &accountBook, Faults &faultList, RequestLog &requests,
                   VideoService &videoService)
        : world(cameras)
        , accounts(accountBook)
        , faults(faultList)
        , log(requests)
        , service(videoService)
    {
    }

    HttpReply handle(const HttpRequest &request);

private:
    HttpReply show(const HttpRequest &request);
    HttpReply change(const std::string &path, const nlohmann::json &body);
    HttpReply changeCameras(const std::string &path, const nlohmann::json &body);
    HttpReply changeServers(const std::string &path, const nlohmann::json &body);
    HttpReply changeFaults(const std::string &path, const nlohmann::json &body);

    World &world;
    Accounts &accounts;
    Faults &faults;
    RequestLog &log;
    VideoService &service;
};

} // namespace ZorvaneDemo
