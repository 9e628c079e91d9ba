// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string>

namespace ZorvaneServer {

/// Where the program's files are unless it is told otherwise: the system's for a service and for
/// root, the user's own for anybody else.
struct Places {
    std::string configFile;
    std::string stateFolder;

    /// Of a variable; empty when it isn't set.
    using Environment = std::function<std::string(const char *)>;

    static Places of(bool isRoot, const Environment &environment);
    /// Of the user who runs the program.
    static Places usual();
};

} // namespace ZorvaneServer
