// SPDX-License-Identifier: MIT
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <string>
#include <thread>
#include <vector>

#include "companion/AvHandles.h"
#include "companion/CommandInput.h"
#include "companion/Controls.h"
#include "companion/FrameFile.h"
#include "companion/LastWords.h"
#include "companion/Player.h"
#include "companion/PlayerArguments.h"
#include "companion/PlayerOutput.h"
#include "companion/export/ExportArguments.h"
#include "companion/export/ExportOutput.h"
#include "companion/export/ExportWatch.h"
#include "companion/export/Exporter.h"
#include "companion/export/TargetFile.h"

namespace {

using namespace ZorvaneClient::Companion;

constexpr int errorExitCode = 1;
constexpr int usageExitCode = 2;
constexpr int outOfMemoryScore = 500; ///< of 1000

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
        LastWords::lendStack();
        CommandInput(STDIN_FILENO, controls).run();
        LastWords::say();
        std::_Exit(EXIT_SUCCESS);
    }).detach();
}

int complain(const std::string &text)
{
    std::fprintf(stderr, "vlc-stream: %s\n", text.c_str());
    return errorExitCode;
}

/// The system, when it runs out of memory, takes a tile rather than the window of all tiles.
void volunteerForOutOfMemory()
{
    if (std::FILE *file = std::fopen("/proc/self/oom_score_adj", "w")) {
        std::fprintf(file, "%d", outOfMemoryScore);
        std::fclose(file);
    }
}

int playStream(const std::vector<std::string> &words)
{
    volunteerForOutOfMemory();
    LastWords::sayAtCrash();
    const auto arguments = parsePlayerArguments(words);
    if (!arguments) {
        std::fprintf(stderr, "%s\n", usageLine);
        LastWords::say();
        return usageExitCode;
    }
    PlayerOutput output(STDOUT_FILENO);
    FrameFile frameFile;
    if (!frameFile.open(arguments->frameName)) {
        output.state(StreamState::Error);
        output.flushPatiently();
        return complain(frameFile.error());
    }
    Controls controls;
    obeyClient(controls);
    Player player(*arguments, controls, frameFile, output);
    std::_Exit(player.run() ? EXIT_SUCCESS : errorExitCode);
}

int exportStream(const std::vector<std::string> &words)
{
    ExportOutput output(STDOUT_FILENO);
    const auto arguments = parseExportArguments(words);
    if (!arguments) {
        std::fprintf(stderr, "%s\n", usageLine);
        output.error();
        return usageExitCode;
    }
    const ExportWatch watch;
    TargetFile file(arguments->path);
    if (!file.open()) {
        output.error();
        return complain(file.error());
    }
    watch.start(file, output);
    output.start();
    Exporter exporter(*arguments, file, output);
    if (exporter.run()) {
        output.done();
        std::_Exit(EXIT_SUCCESS);
    }
    file.discard();
    output.error();
    std::_Exit(complain(exporter.error()));
}

} // namespace

int main(int argc, char *argv[])
{
    std::signal(SIGPIPE, SIG_IGN);
    std::signal(SIGXFSZ, SIG_IGN); // a write beyond the limit then just fails
    forgetProxyOfEnvironment();
    av_log_set_level(AV_LOG_QUIET);

    std::vector<std::string> words(argv + (argc > 0), argv + argc);
    if (words.empty() || words.front() != exportWord)
        return playStream(words);
    words.erase(words.begin());
    return exportStream(words);
}
