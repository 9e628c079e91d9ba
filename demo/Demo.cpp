// SPDX-License-Identifier: MIT
#include "demo/Demo.h"

#include <cstddef>
#include <utility>

#include "service/ClientFiles.h"
#include "service/Loopback.h"

#ifndef ZORVANE_VERSION
#error "the build defines the client's version"
#endif

namespace ZorvaneDemo {

Demo::Demo(const Options &given, const Certificates &tlsFiles)
    : options(given)
    , certificates(tlsFiles)
    , world(given.world)
    , accounts(given.email, given.password, given.dataFolder + "/accounts.json")
    , clips(given.clipFolder, given.clipForm)
    , service(world, archive, media, accounts, ZORVANE_VERSION)
{
}

std::string Demo::bind()
{
    const HttpServer::Tls tls{certificates.serverFile, certificates.serverKeyFile};
    const auto lan = [this](const HttpRequest &request) { return service.lan.handle(request); };
    const auto control = [this](const HttpRequest &request) {
        return controlService.handle(request);
    };
    bool good =
        listen("api", options.apiPort, &apiPort, &tls, watched([this](const HttpRequest &request) {
                   return service.api.handle(request);
               })) &&
        listen("streaming", options.streamingPort, &streamingPort, &tls,
               watched([this](const HttpRequest &request) {
                   return service.streaming.handle(request);
               })) &&
        listen("flv", options.flvPort, &flvPort, nullptr,
               watched([this](const HttpRequest &request) { return serveFlv(request); })) &&
        listen("control", options.controlPort, &controlPort, nullptr, control);
    for (int i = 0; good && i < options.world.lanServers; ++i) {
        const auto at = static_cast<std::size_t>(i);
        lanPorts.push_back(0);
        good = listen(HttpRequest::lanListener,
                      at < options.lanPorts.size() ? options.lanPorts[at] : 0, &lanPorts.back(),
                      nullptr, watched(lan));
    }
    world.setLanPorts(lanPorts);
    return good ? std::string() : failure;
}

void Demo::start()
{
    for (const auto &server : servers)
        server->start();
}

bool Demo::writeConfiguration(const std::string &folder) const
{
    ClientFiles files;
    files.host = loopback;
    files.apiPort = apiPort;
    files.streamingPort = streamingPort;
    files.flvPort = flvPort;
    files.caCertificate = certificates.authorityFile;
    return files.write(folder, world.servers());
}

nlohmann::json Demo::describe() const
{
    return {{"api", apiPort},
            {"streaming", streamingPort},
            {"flv", flvPort},
            {"lan", lanPorts},
            {"control", controlPort},
            {"ca", certificates.authorityFile},
            {"email", options.email},
            {"password", options.password},
            {"lanPassword", WorldMaker::lanPassword}};
}

bool Demo::listen(const char *name, int wanted, int *bound, const HttpServer::Tls *tls,
                  HttpServer::Handler handler)
{
    servers.push_back(std::make_unique<HttpServer>(name, std::move(handler), tls));
    *bound = servers.back()->bind(wanted);
    if (*bound == 0)
        failure = "cannot listen on port " + std::to_string(wanted) + " for " + name;
    return *bound != 0;
}

HttpServer::Handler Demo::watched(HttpServer::Handler serve)
{
    return [this, serve = std::move(serve)](const HttpRequest &request) {
        log.add(request);
        return faults.apply(request, serve(request));
    };
}

HttpReply Demo::serveFlv(const HttpRequest &request)
{
    if (request.path != "/")
        return service.flv.handle(request);
    HttpReply reply;
    reply.contentType = "text/html";
    reply.body = "<html><body><h1>Zorvane demo service</h1>"
                 "<p>There is nothing to download or to sign up for here.</p></body></html>";
    return reply;
}

} // namespace ZorvaneDemo
