// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace ZorvaneServer {

/// The command line.
struct Options {
    enum class Command { Run, Check, Add, Probe, Prepare, ClientFiles, Status, Help, Version };

    Command command = Command::Run;
    std::string configFile; ///< empty: the usual one
    std::string argument;   ///< the address to probe, the folder to prepare or to write to

    /// Fills itself from the arguments; false when they are not understood.
    bool parse(int count, char **arguments);
    static const char *usage();
};

} // namespace ZorvaneServer
