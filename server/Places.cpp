// SPDX-License-Identifier: MIT
#include "server/Places.h"

#include <cstdlib>

#include <unistd.h>

namespace ZorvaneServer {

namespace {

constexpr char systemConfig[] = "/etc/zorvane-server.conf";
constexpr char systemState[] = "/var/lib/zorvane-server";

std::string folderOf(const Places::Environment &environment, const char *name,
                     const std::string &belowHome)
{
    const std::string folder = environment(name);
    // A relative one is to be ignored.
    return !folder.empty() && folder.front() == '/' ? folder : environment("HOME") + belowHome;
}

} // namespace

Places Places::of(bool isRoot, const Environment &environment)
{
    // Set for a service that has a folder of its own.
    const std::string given = environment("STATE_DIRECTORY");
    if (isRoot || !given.empty())
        return {systemConfig, given.empty() ? systemState : given.substr(0, given.find(':'))};
    const std::string own =
        folderOf(environment, "XDG_CONFIG_HOME", "/.config") + "/zorvane-server.conf";
    const bool usesSystem = access(own.c_str(), F_OK) != 0 && access(systemConfig, R_OK) == 0;
    return {usesSystem ? systemConfig : own,
            folderOf(environment, "XDG_DATA_HOME", "/.local/share") + "/zorvane-server"};
}

Places Places::usual()
{
    return of(geteuid() == 0, [](const char *name) {
        const char *value = std::getenv(name);
        return std::string(value ? value : "");
    });
}

} // namespace ZorvaneServer
