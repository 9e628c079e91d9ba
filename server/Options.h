// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace ZorvaneServer {

/// The command line.
struct Options {
    enum class Command { Record, Check, Probe, Prepare, Help, Version };

    Command command = Command::Record;
    std::string configFile = "/etc/zorvane-server.conf";
    std::string argument; ///< the address to probe, the folder to prepare

    /// Fills itself from the arguments; false when they are not understood.
    bool parse(int count, char **arguments);
    static const char *usage();
};

} // namespace ZorvaneServer
