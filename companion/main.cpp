// SPDX-License-Identifier: MIT
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "companion/Arguments.h"
#include "companion/CommandInput.h"
#include "companion/Controls.h"
#include "companion/FrameFile.h"
#include "companion/LineOutput.h"
#include "companion/Player.h"

namespace {

using namespace ZorvaneClient::Companion;

constexpr int errorExitCode = 1;
constexpr int usageExitCode = 2;

/// Only the arguments say whether there is a proxy.
void forgetProxyOfEnvironment()
{
    for (const char *name : {"http_proxy", "https_proxy", "all_proxy", "no_proxy"})
        unsetenv(name);
}

/// The process ends as soon as the client is gone, whatever its other threads are at.
void obeyClient(Controls &controls)
{
    std::thread([&controls] {
        CommandInput(STDIN_FILENO, controls).run();
        std::_Exit(EXIT_SUCCESS);
    }).detach();
}

} // namespace

int main(int argc, char *argv[])
{
    const auto arguments = parseArguments(std::vector<std::string>(argv + (argc > 0), argv + argc));
    if (!arguments) {
        std::fprintf(stderr, "%s\n", usageLine);
        return usageExitCode;
    }
    std::signal(SIGPIPE, SIG_IGN);
    forgetProxyOfEnvironment();
    av_log_set_level(AV_LOG_QUIET);

    LineOutput output(STDOUT_FILENO);
    FrameFile frameFile;
    if (!frameFile.open(arguments->frameName)) {
        std::fprintf(stderr, "vlc-stream: %s\n", frameFile.error().c_str());
        output.state(StreamState::Error);
        output.flushPatiently();
        return errorExitCode;
    }

    Controls controls;
    obeyClient(controls);
    Player player(*arguments, controls, frameFile, output);
    std::_Exit(player.run());
}
