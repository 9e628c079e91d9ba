// SPDX-License-Identifier: MIT
#include "demo/Demo.h"

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <utility>

#include "demo/Loopback.h"
#include "demo/WorldJson.h"

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
    , api(world, accounts, ZORVANE_VERSION)
{
}

std::string Demo::bind()
{
    const HttpServer::Tls tls{certificates.serverFile, certificates.serverKeyFile};
    const auto lan = [this](const HttpRequest &request) { return lanService.handle(request); };
    const auto control = [this](const HttpRequest &request) {
        return controlService.handle(request);
    };
    bool good =
        listen("api", options.apiPort, &apiPort, &tls,
               watched([this](const HttpRequest &request) { return api.handle(request); })) &&
        listen("streaming", options.streamingPort, &streamingPort, &tls,
               watched([this](const HttpRequest &request) { return streaming.handle(request); })) &&
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
    std::error_code code;
    std::filesystem::create_directories(folder, code);
    std::ofstream profile(folder + "/service.ini");
    profile << "[service]\n"
            << "apiHost=" << loopback << "\napiPort=" << apiPort << "\nstreamingHost=" << loopback
            << "\nstreamingPort=" << streamingPort << "\nflvHost=" << loopbackAddress(flvPort)
            << "\nredirectorHost=" << loopbackAddress(flvPort)
            << "\ncaCertificate=" << certificates.authorityFile << "\n";
    std::ofstream roster(folder + "/local_roster.txt");
    roster << localRosterJson(world.servers()).dump(4) << "\n";
    profile.close();
    roster.close();
    return profile.good() && roster.good();
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
        return flv.handle(request);
    HttpReply reply;
    reply.contentType = "text/html";
    reply.body = "<html><body><h1>Zorvane demo service</h1>"
                 "<p>There is nothing to download or to sign up for here.</p></body></html>";
    return reply;
}

} // namespace ZorvaneDemo
