// SPDX-License-Identifier: MIT
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include <sys/stat.h>

extern "C" {
#include <libavformat/avformat.h>
}

#include "server/Configuration.h"
#include "server/Log.h"
#include "server/Options.h"
#include "server/Probe.h"
#include "server/Server.h"

using namespace ZorvaneServer;

namespace {

constexpr int usageError = 2;
constexpr mode_t ownerOnly = 077;

/// Says what is wrong with the configuration, all of it. False when anything is.
bool isSound(const Configuration &configuration)
{
    for (const std::string &error : configuration.errors)
        Log::say(error);
    return configuration.errors.empty();
}

int check(const Options &options)
{
    const Configuration configuration = Configuration::read(options.configFile);
    struct stat facts {
    };
    if (stat(options.configFile.c_str(), &facts) == 0 && (facts.st_mode & ownerOnly) != 0)
        Log::say(options.configFile + ": others can read it, and the passwords in it");
    if (!isSound(configuration))
        return EXIT_FAILURE;
    if (!ArchiveFolder(configuration.archive.folder).isReady())
        Log::say(configuration.archive.folder + ": no archive yet. Mount its disk and type: " +
                 "zorvane-server prepare " + configuration.archive.folder);
    std::printf("%zu cameras\n", configuration.cameras.size());
    return EXIT_SUCCESS;
}

int probeCamera(const Options &options)
{
    const CameraSource source{options.argument};
    if (source.scheme().empty()) {
        Log::say("not an address: it begins with rtsp://, rtsps://, http://, https:// or file:");
        return usageError;
    }
    Log::keepSecret(source.url);
    std::string report;
    const bool good = probe(source, &report);
    std::fputs(report.c_str(), stdout);
    return good ? EXIT_SUCCESS : EXIT_FAILURE;
}

int prepare(const Options &options)
{
    if (ArchiveFolder(options.argument).prepare())
        return EXIT_SUCCESS;
    Log::say(options.argument + ": " + std::strerror(errno));
    return EXIT_FAILURE;
}

/// Until SIGTERM or SIGINT.
int record(const Options &options)
{
    const Configuration configuration = Configuration::read(options.configFile);
    if (!isSound(configuration))
        return EXIT_FAILURE;
    // Before the threads, which would be ended by them otherwise.
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGINT);
    sigprocmask(SIG_BLOCK, &signals, nullptr);

    Server server(configuration);
    server.openArchive();
    server.start();
    int ended = 0;
    sigwait(&signals, &ended);
    server.stop();
    Log::say("ended");
    return EXIT_SUCCESS;
}

} // namespace

int main(int argc, char **argv)
{
    Options options;
    if (!options.parse(argc, argv)) {
        std::fputs(Options::usage(), stderr);
        return usageError;
    }
    std::signal(SIGPIPE, SIG_IGN);
    Log::takeMessages();
    avformat_network_init();
    switch (options.command) {
    case Options::Command::Help:
        std::fputs(Options::usage(), stdout);
        return EXIT_SUCCESS;
    case Options::Command::Version:
        std::puts("zorvane-server " ZORVANE_VERSION);
        return EXIT_SUCCESS;
    case Options::Command::Check:
        return check(options);
    case Options::Command::Probe:
        return probeCamera(options);
    case Options::Command::Prepare:
        return prepare(options);
    case Options::Command::Record:
        break;
    }
    return record(options);
}
