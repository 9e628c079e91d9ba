// SPDX-License-Identifier: MIT
#include "server/Commands.h"

#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <iostream>

#include <sys/stat.h>

#include "server/AddCamera.h"
#include "server/Configuration.h"
#include "server/HouseService.h"
#include "server/Log.h"
#include "server/Places.h"
#include "server/Probe.h"
#include "server/Server.h"
#include "server/StateFolder.h"
#include "server/StatusSocket.h"
#include "server/Supervisor.h"

namespace ZorvaneServer {

namespace {

constexpr int usageError = 2;
constexpr mode_t groupAndOthers = 077;

struct Setup {
    std::string fileName;
    Configuration configuration;

    explicit Setup(const Options &options)
    {
        const Places places = Places::usual();
        fileName = options.configFile.empty() ? places.configFile : options.configFile;
        configuration = Configuration::read(fileName, places.stateFolder);
    }

    /// Says what is wrong with the file, all of it. False when anything is.
    bool isSound() const
    {
        for (const std::string &error : configuration.errors)
            Log::say(error);
        return configuration.errors.empty();
    }
};

/// The exit code, once what went wrong, if anything did, has been said.
int outcome(const std::string &failure)
{
    if (!failure.empty())
        Log::say(failure);
    return failure.empty() ? EXIT_SUCCESS : EXIT_FAILURE;
}

/// Says so when anybody has one of those rights on the file.
void warnOfReaders(const std::string &fileName, mode_t rights)
{
    struct stat facts {
    };
    if (stat(fileName.c_str(), &facts) == 0 && (facts.st_mode & rights) != 0)
        Log::say(fileName + ": others can read it, and the passwords in it");
}

int check(const Setup &setup)
{
    warnOfReaders(setup.fileName, groupAndOthers);
    if (!setup.isSound())
        return EXIT_FAILURE;
    const std::string &folder = setup.configuration.archive.folder;
    if (!ArchiveFolder(folder).isReady())
        Log::say(folder + ": no archive yet. Mount its disk, if it has one of its own, and " +
                 "type: zorvane-server prepare " + folder);
    std::printf("%zu cameras\n", setup.configuration.cameras.size());
    return EXIT_SUCCESS;
}

int probeCamera(const std::string &address)
{
    const CameraSource source{address};
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
    std::string folder = options.argument;
    if (folder.empty()) {
        const Setup setup(options);
        // What it says otherwise isn't where anybody wants an archive.
        if (!setup.isSound())
            return EXIT_FAILURE;
        folder = setup.configuration.archive.folder;
        std::error_code code;
        std::filesystem::create_directories(std::filesystem::path(folder).parent_path(), code);
    }
    if (!ArchiveFolder(folder).prepare())
        return outcome(folder + ": " + std::strerror(errno));
    std::printf("%s is prepared for an archive\n", folder.c_str());
    return EXIT_SUCCESS;
}

int writeClientFiles(const Setup &setup, const std::string &folder)
{
    if (!setup.isSound())
        return EXIT_FAILURE;
    const StateFolder state(setup.configuration.service.stateFolder);
    return outcome(HouseService::writeClientFiles(setup.configuration.service, state, folder));
}

int tellStatus(const Setup &setup)
{
    std::string text;
    const std::string failure = StatusSocket::ask(setup.configuration.service.stateFolder, &text);
    if (failure.empty())
        std::fputs(text.c_str(), stdout);
    return outcome(failure);
}

/// Returns at SIGTERM or SIGINT, which must be blocked.
void serve(const Server &server, const sigset_t &signals)
{
    Supervisor::tell("READY=1");
    const auto heartbeat = Supervisor::heartbeat();
    for (;;) {
        const long long ms = heartbeat ? heartbeat->count() : 0;
        const timespec wait{ms / 1000, ms % 1000 * 1'000'000};
        if (sigtimedwait(&signals, nullptr, heartbeat ? &wait : nullptr) > 0)
            return;
        // It takes the locks of meters and catalogue: one that is never given back stops the heart.
        // A disk that doesn't answer must not, since who watches needs none.
        if (errno == EAGAIN && !server.streamStatus().empty())
            Supervisor::tell("WATCHDOG=1");
    }
}

int run(const Setup &setup)
{
    // What a service is lent seems its group's, where a list of rights lets its user read it.
    warnOfReaders(setup.fileName, S_IRWXO);
    if (!setup.isSound())
        return EXIT_FAILURE;
    // Before the threads, which would be ended by them otherwise.
    sigset_t signals;
    sigemptyset(&signals);
    sigaddset(&signals, SIGTERM);
    sigaddset(&signals, SIGINT);
    sigprocmask(SIG_BLOCK, &signals, nullptr);

    // Never released: those who watch are threads that are not waited for.
    auto &state = *new StateFolder(setup.configuration.service.stateFolder);
    std::string password;
    std::string failure = state.make();
    if (failure.empty())
        failure = state.lock();
    if (failure.empty())
        failure = state.readPassword(&password);
    if (!failure.empty())
        return outcome(failure);
    auto &server = *new Server(setup.configuration, state, password);
    auto &status = *new StatusSocket(state.folder(), [&server] { return server.status().text(); });
    if (failure = server.bind(); !failure.empty())
        return outcome(failure);
    server.openArchive();
    server.start();
    if (failure = status.start(); !failure.empty())
        Log::say(failure);
    serve(server, signals);
    Supervisor::tell("STOPPING=1");
    server.stop();
    Log::say("ended");
    std::fflush(stderr);
    std::_Exit(EXIT_SUCCESS);
}

} // namespace

int runCommand(const Options &options)
{
    switch (options.command) {
    case Options::Command::Help:
        std::fputs(Options::usage(), stdout);
        return EXIT_SUCCESS;
    case Options::Command::Version:
        std::puts("zorvane-server " ZORVANE_VERSION);
        return EXIT_SUCCESS;
    case Options::Command::Check:
        return check(Setup(options));
    case Options::Command::Add:
        return addCamera(std::cin, std::cout, Setup(options).fileName) ? EXIT_SUCCESS
                                                                       : EXIT_FAILURE;
    case Options::Command::Probe:
        return probeCamera(options.argument);
    case Options::Command::Prepare:
        return prepare(options);
    case Options::Command::ClientFiles:
        return writeClientFiles(Setup(options), options.argument);
    case Options::Command::Status:
        return tellStatus(Setup(options));
    case Options::Command::Run:
        break;
    }
    return run(Setup(options));
}

} // namespace ZorvaneServer
