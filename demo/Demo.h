// SPDX-License-Identifier: MIT
#pragma once

#include <nlohmann/json.hpp>

#include <memory>
#include <string>
#include <vector>

#include "demo/Archive.h"
#include "demo/ClipMedia.h"
#include "demo/ClipStore.h"
#include "demo/ControlService.h"
#include "demo/Faults.h"
#include "demo/Options.h"
#include "demo/RequestLog.h"
#include "demo/ServiceWords.h"
#include "demo/World.h"
#include "service/Accounts.h"
#include "service/Certificates.h"
#include "service/HttpServer.h"
#include "service/VideoService.h"

namespace ZorvaneDemo {

/// Everything that serves, and the ports it serves on.
class Demo
{
public:
    Demo(const Options &given, const Certificates &tlsFiles);

    /// Makes the clips that aren't there yet. Empty on success, else what failed.
    std::string prepareClips() { return clips.prepare(world.scenes()); }
    /// Binds all ports. Empty on success, else what failed.
    std::string bind();
    /// Serves from now on, on threads of its own.
    void start();

    /// Puts the files into `folder` with which a client finds this service.
    bool writeConfiguration(const std::string &folder) const;
    /// Ports, account and authority; for whoever started the program.
    nlohmann::json describe() const;

private:
    bool listen(const char *name, int wanted, int *bound, const HttpServer::Tls *tls,
                HttpServer::Handler handler);
    /// `serve`, with its requests logged and the faults in force.
    HttpServer::Handler watched(HttpServer::Handler serve);
    /// The streams, and the page where the client's links for downloads, sign-up and passwords
    /// lead.
    HttpReply serveFlv(const HttpRequest &request);

    const Options options;
    const Certificates certificates;
    World world;
    Accounts accounts;
    ClipStore clips;
    Faults faults;
    RequestLog log;
    Archive archive{world};
    ClipMedia media{world, clips};
    VideoService service;
    ControlService controlService{world, accounts, faults, log, service};
    std::vector<std::unique_ptr<HttpServer>> servers;
    std::string failure;
    int apiPort = 0;
    int streamingPort = 0;
    int flvPort = 0;
    int controlPort = 0;
    std::vector<int> lanPorts;
};

} // namespace ZorvaneDemo
