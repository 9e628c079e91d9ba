// SPDX-License-Identifier: MIT
#include <csignal>
#include <cstdio>

#include <sys/stat.h>

extern "C" {
#include <libavformat/avformat.h>
}

#include "server/Commands.h"
#include "server/Log.h"

using namespace ZorvaneServer;

namespace {

constexpr int usageError = 2;
constexpr mode_t forOwnerOnly = 077;

} // namespace

int main(int argc, char **argv)
{
    Options options;
    if (!options.parse(argc, argv)) {
        std::fputs(Options::usage(), stderr);
        return usageError;
    }
    std::signal(SIGPIPE, SIG_IGN);
    umask(forOwnerOnly);
    Log::takeMessages();
    avformat_network_init();
    return runCommand(options);
}
