// SPDX-License-Identifier: MIT
#include <nlohmann/json.hpp>

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>
#include <vector>

#include <poll.h>
#include <sys/signalfd.h>
#include <sys/stat.h>
#include <unistd.h>

extern "C" {
#include <libavutil/log.h>
}

#include "demo/Access.h"
#include "demo/Accounts.h"
#include "demo/ApiService.h"
#include "demo/Certificate.h"
#include "demo/ClipStore.h"
#include "demo/ControlService.h"
#include "demo/Faults.h"
#include "demo/FlvService.h"
#include "demo/HttpServer.h"
#include "demo/LanService.h"
#include "demo/Options.h"
#include "demo/RequestLog.h"
#include "demo/StreamingService.h"
#include "demo/World.h"
#include "demo/WorldJson.h"

#ifndef ZORVANE_VERSION
#error "the build defines the client's version"
#endif

using namespace ZorvaneDemo;

namespace {

constexpr int usageError = 2;

/// Everything that serves, and the ports it serves on.
class Demo
{
public:
    Demo(const Options &given, const Certificates &tlsFiles)
        : options(given)
        , certificates(tlsFiles)
        , world(given.world)
        , accounts(given.email, given.password, given.dataFolder + "/accounts.json")
        , clips(given.clipFolder, given.testClips)
    {
    }

    std::string prepareClips() { return clips.prepare(world.scenes()); }

    /// Binds all ports. Empty on success, else what failed.
    std::string bind()
    {
        const HttpServer::Tls tls{certificates.serverFile, certificates.serverKeyFile};
        const auto watched = [this](auto serve) {
            return [this, serve](const HttpRequest &request) {
                log.add(request);
                return faults.apply(request, serve(request));
            };
        };
        const auto lan = [this](const HttpRequest &request) { return lanService.handle(request); };
        const auto control = [this](const HttpRequest &request) {
            return controlService.handle(request);
        };
        bool good =
            listen("api", options.apiPort, &apiPort, &tls,
                   watched([this](const HttpRequest &request) { return api.handle(request); })) &&
            listen("streaming", options.streamingPort, &streamingPort, &tls,
                   watched(
                       [this](const HttpRequest &request) { return streaming.handle(request); })) &&
            listen("flv", options.flvPort, &flvPort, nullptr,
                   watched([this](const HttpRequest &request) { return serveFlv(request); })) &&
            listen("control", options.controlPort, &controlPort, nullptr, control);
        for (int i = 0; good && i < options.world.lanServers; ++i) {
            const auto at = static_cast<std::size_t>(i);
            lanPorts.push_back(0);
            good = listen("lan", at < options.lanPorts.size() ? options.lanPorts[at] : 0,
                          &lanPorts.back(), nullptr, watched(lan));
        }
        world.setLanPorts(lanPorts);
        return good ? std::string() : failure;
    }

    void start()
    {
        for (const auto &server : servers)
            server->start();
    }

    bool writeConfiguration(const std::string &folder) const
    {
        std::error_code code;
        std::filesystem::create_directories(folder, code);
        std::ofstream profile(folder + "/service.ini");
        profile << "[service]\n"
                << "apiHost=127.0.0.1\napiPort=" << apiPort << "\nstreamingHost=127.0.0.1\n"
                << "streamingPort=" << streamingPort << "\nflvHost=127.0.0.1:" << flvPort
                << "\nredirectorHost=127.0.0.1:" << flvPort
                << "\ncaCertificate=" << certificates.authorityFile << "\n";
        std::ofstream roster(folder + "/local_roster.txt");
        roster << localRosterJson(world.servers()).dump(4) << "\n";
        profile.close();
        roster.close();
        return profile.good() && roster.good();
    }

    nlohmann::json describe() const
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

private:
    bool listen(const char *name, int wanted, int *bound, const HttpServer::Tls *tls,
                HttpServer::Handler handler)
    {
        servers.push_back(std::make_unique<HttpServer>(name, std::move(handler), tls));
        *bound = servers.back()->bind(wanted);
        if (*bound == 0)
            failure = "cannot listen on port " + std::to_string(wanted) + " for " + name;
        return *bound != 0;
    }

    HttpReply serveFlv(const HttpRequest &request)
    {
        if (request.method == "GET" && request.path == "/flv/live")
            return flv.live(request);
        if (request.method == "GET" && request.path == "/flv/archive")
            return flv.archive(request);
        HttpReply reply;
        if (request.path != "/") {
            reply.status = 404;
            return reply;
        }
        // Where the client's links for downloads, sign-up and passwords lead.
        reply.contentType = "text/html";
        reply.body = "<html><body><h1>Zorvane demo service</h1>"
                     "<p>There is nothing to download or to sign up for here.</p></body></html>";
        return reply;
    }

    const Options options;
    const Certificates certificates;
    World world;
    Accounts accounts;
    ClipStore clips;
    Faults faults;
    RequestLog log;
    Access access{world, accounts};
    ApiService api{world, accounts, ZORVANE_VERSION};
    StreamingService streaming{access, clips};
    FlvService flv{world, access, clips};
    LanService lanService{world, streaming, flv};
    ControlService controlService{world, accounts, faults, log, api, flv};
    std::vector<std::unique_ptr<HttpServer>> servers;
    std::string failure;
    int apiPort = 0;
    int streamingPort = 0;
    int flvPort = 0;
    int controlPort = 0;
    std::vector<int> lanPorts;
};

int fail(const std::string &what)
{
    std::fprintf(stderr, "zorvane-demo: %s\n", what.c_str());
    return EXIT_FAILURE;
}

/// Ready to be read before any thread starts, so that no thread takes the signals.
int endSignals()
{
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGINT);
    sigprocmask(SIG_BLOCK, &signals, nullptr);
    std::signal(SIGPIPE, SIG_IGN);
    return signalfd(-1, &signals, SFD_CLOEXEC);
}

/// Returns at SIGTERM, SIGINT or the end of standard input.
void waitForEnd(int signals)
{
    pollfd watched[2] = {{STDIN_FILENO, POLLIN, 0}, {signals, POLLIN, 0}};
    for (;;) {
        if (poll(watched, 2, -1) < 0 && errno != EINTR)
            return;
        if (watched[1].revents != 0)
            return;
        char ignored[256];
        if (watched[0].revents != 0 && read(STDIN_FILENO, ignored, sizeof ignored) <= 0)
            return;
    }
}

} // namespace

int main(int argc, char **argv)
{
    Options options;
    if (!options.parse(argc, argv)) {
        std::fputs(Options::usage(), stderr);
        return usageError;
    }
    if (options.help) {
        std::fputs(Options::usage(), stdout);
        return EXIT_SUCCESS;
    }
    av_log_set_level(AV_LOG_ERROR);
    if (options.clipsOnly) {
        ClipStore clips(options.clipFolder, options.testClips);
        const std::string failure = clips.prepare(World(options.world).scenes());
        return failure.empty() ? EXIT_SUCCESS : fail(failure);
    }

    std::error_code code;
    options.dataFolder = std::filesystem::absolute(options.dataFolder, code).string();
    std::filesystem::create_directories(options.dataFolder, code);
    chmod(options.dataFolder.c_str(), 0700);
    const Certificates certificates = Certificates::inFolder(options.dataFolder);
    if (!certificates.error.empty())
        return fail(certificates.error);

    Demo demo(options, certificates);
    if (const std::string failure = demo.prepareClips(); !failure.empty())
        return fail(failure);
    const int signals = endSignals();
    if (const std::string failure = demo.bind(); !failure.empty())
        return fail(failure);
    if (!options.configFolder.empty() && !demo.writeConfiguration(options.configFolder))
        return fail("cannot write the configuration to " + options.configFolder);
    demo.start();
    std::printf("%s\n", demo.describe().dump().c_str());
    std::fflush(stdout);
    waitForEnd(signals);
    // Streams are not waited for; nothing they hold outlives the process.
    std::fflush(stderr);
    std::_Exit(EXIT_SUCCESS);
}
