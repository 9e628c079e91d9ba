// SPDX-License-Identifier: MIT
#include "demo/Options.h"

#include <algorithm>
#include <cstdlib>
#include <functional>
#include <limits>
#include <map>

#include "demo/StripCode.h"
#include "demo/scenes/SceneCount.h"
#include "service/Http.h"

namespace ZorvaneDemo {

namespace {

constexpr int largestPort = 65'535;
constexpr int mostServers = 500;
constexpr int mostCameras = 10'000;
constexpr int mostLanServers = 16;

static_assert(mostCameras + mostLanServers * WorldMaker::camerasPerLanServer <
                  StripCode::maximumCamera,
              "every camera needs a number of its own in the strip");

std::string defaultDataFolder()
{
    if (const char *cache = std::getenv("XDG_CACHE_HOME"); cache && *cache)
        return std::string(cache) + "/zorvane-demo";
    const char *home = std::getenv("HOME");
    return std::string(home && *home ? home : ".") + "/.cache/zorvane-demo";
}

bool readNumber(const std::string &text, int least, int most, int *target)
{
    const std::int64_t value = numberOr(text, std::numeric_limits<std::int64_t>::min());
    if (value < least || value > most)
        return false;
    *target = static_cast<int>(value);
    return true;
}

bool readPorts(const std::string &text, std::vector<int> *ports)
{
    for (std::size_t begin = 0; begin <= text.size();) {
        const std::size_t end = std::min(text.find(',', begin), text.size());
        int port = 0;
        if (!readNumber(text.substr(begin, end - begin), 0, largestPort, &port))
            return false;
        ports->push_back(port);
        begin = end + 1;
    }
    return true;
}

} // namespace

const char *Options::usage()
{
    return "usage: zorvane-demo [--data DIR] [--clips DIR] [--write-config DIR]\n"
           "                    [--seed N] [--servers N] [--cameras N] [--lan-servers N]\n"
           "                    [--plain] [--scenes N] [--test-clips] [--noise] [--clips-only]\n"
           "                    [--email TEXT] [--password TEXT]\n"
           "                    [--api-port N] [--streaming-port N] [--flv-port N]\n"
           "                    [--control-port N] [--lan-ports N,N...] [--help]\n";
}

bool Options::parse(int count, char **arguments)
{
    dataFolder = defaultDataFolder();
    int seed = static_cast<int>(world.seed);

    using Reader = std::function<bool(const std::string &)>;
    const auto text = [](std::string *target) {
        return [target](const std::string &value) {
            *target = value;
            return !value.empty();
        };
    };
    const auto number = [](int *target, int least, int most) {
        return [=](const std::string &value) { return readNumber(value, least, most, target); };
    };
    const std::map<std::string, Reader> valued{
        {"--data", text(&dataFolder)},
        {"--clips", text(&clipFolder)},
        {"--write-config", text(&configFolder)},
        {"--email", text(&email)},
        {"--password", text(&password)},
        {"--seed", number(&seed, 1, std::numeric_limits<int>::max())},
        {"--servers", number(&world.servers, 0, mostServers)},
        {"--cameras", number(&world.cameras, 0, mostCameras)},
        {"--lan-servers", number(&world.lanServers, 0, mostLanServers)},
        {"--scenes", number(&world.scenes, 1, sceneCount)},
        {"--api-port", number(&apiPort, 0, largestPort)},
        {"--streaming-port", number(&streamingPort, 0, largestPort)},
        {"--flv-port", number(&flvPort, 0, largestPort)},
        {"--control-port", number(&controlPort, 0, largestPort)},
        {"--lan-ports", [this](const std::string &value) { return readPorts(value, &lanPorts); }},
    };
    const std::map<std::string, bool *> switches{{"--plain", &world.plain},
                                                 {"--test-clips", &clipForm.test},
                                                 {"--noise", &clipForm.noise},
                                                 {"--clips-only", &clipsOnly},
                                                 {"--help", &help}};
    for (int i = 1; i < count; ++i) {
        const std::string name = arguments[i];
        if (const auto found = switches.find(name); found != switches.end()) {
            *found->second = true;
            continue;
        }
        const auto found = valued.find(name);
        if (found == valued.end() || i + 1 == count || !found->second(arguments[++i]))
            return false;
    }
    world.seed = static_cast<unsigned>(seed);
    if (clipFolder.empty())
        clipFolder = dataFolder + "/clips";
    return true;
}

} // namespace ZorvaneDemo
