// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "demo/Invented.h"
#include "demo/scenes/SceneCount.h"

namespace ZorvaneDemo {

struct WorldOptions {
    unsigned seed = 1;
    int servers = 5;
    int cameras = 14;
    int lanServers = 1;
    bool plain = false;      ///< everything online, paid for and with all rights
    int scenes = sceneCount; ///< so many that the cameras share
};

/// Invents servers and cameras. The same options, asked in the same order, give the same ones.
class WorldMaker
{
public:
    static constexpr const char *lanPassword = "camera+1";
    static constexpr int camerasPerLanServer = 3;

    explicit WorldMaker(const WorldOptions &worldOptions) : options(worldOptions) {}

    /// All that the options ask for; first of all, and once.
    std::vector<InventedServer> makeAll();
    /// One more in the cloud, with everything online and allowed.
    InventedServer makeServer(int cameras);
    /// One more camera for `server`; its id.
    int addCameraTo(InventedServer *server);

private:
    InventedServer makeLanServer(int index);

    WorldOptions options;
    int nextNumber = 1; ///< of a camera
    int nextServer = 0; ///< index
};

} // namespace ZorvaneDemo
