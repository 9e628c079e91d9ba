// SPDX-License-Identifier: MIT
#include <cerrno>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include <poll.h>
#include <sys/signalfd.h>
#include <sys/stat.h>
#include <unistd.h>

extern "C" {
#include <libavutil/log.h>
}

#include "demo/ClipStore.h"
#include "demo/Demo.h"
#include "demo/Options.h"
#include "demo/World.h"
#include "service/Certificates.h"

using namespace ZorvaneDemo;

namespace {

constexpr int usageError = 2;

int fail(const std::string &what)
{
    std::fprintf(stderr, "zorvane-demo: %s\n", what.c_str());
    return EXIT_FAILURE;
}

/// A descriptor from which SIGTERM and SIGINT are read. It must be made before the threads that
/// serve, which would be ended by them otherwise. A receiver that has gone is no signal, but a
/// write that fails.
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
        ClipStore clips(options.clipFolder, options.clipForm);
        const std::string failure = clips.prepare(World(options.world).scenes());
        return failure.empty() ? EXIT_SUCCESS : fail(failure);
    }

    std::error_code code;
    options.dataFolder = std::filesystem::absolute(options.dataFolder, code).string();
    std::filesystem::create_directories(options.dataFolder, code);
    chmod(options.dataFolder.c_str(), 0700);
    const Certificates certificates =
        Certificates::inFolder(options.dataFolder, "Zorvane demo authority");
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
