// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "demo/ClipForm.h"
#include "demo/WorldMaker.h"

namespace ZorvaneDemo {

/// The command line.
struct Options {
    WorldOptions world;
    std::string email = "demo@zorvane.example";
    std::string password = "demo";
    std::string dataFolder;   ///< accounts and certificates
    std::string clipFolder;   ///< encoded scenes
    std::string configFolder; ///< where to write the client's files; empty: nowhere
    int apiPort = 0;
    int streamingPort = 0;
    int flvPort = 0;
    int controlPort = 0;
    std::vector<int> lanPorts; ///< by LAN server; missing ones are chosen freely
    ClipForm clipForm;
    bool clipsOnly = false;
    bool help = false;

    /// Fills itself from the arguments; false when they are not understood.
    bool parse(int count, char **arguments);
    static const char *usage();
};

} // namespace ZorvaneDemo
