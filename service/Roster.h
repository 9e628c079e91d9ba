// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <vector>

#include "service/PictureSize.h"

namespace ZorvaneService {

/// What the client is told of a camera, and may do with it.
struct Camera {
    int id = 0;
    std::string name;
    bool online = true;
    bool paid = true;
    bool live = true;    ///< the right
    bool archive = true; ///< the right
    bool ptz = false;    ///< the right
    int rotation = 0;
    bool mirror = false;
    PictureSize size;
};

/// What the client is told of a video server.
struct Server {
    std::string id; ///< "host:port" for one of the LAN
    std::string name;
    bool owner = true;
    bool live = true;
    bool archive = true;
    bool online = true;
    bool isCamera = false;
    bool lan = false;
    std::string password; ///< LAN servers only
};

struct ServerWithCameras {
    Server server;
    std::vector<Camera> cameras;
};

struct CameraOfServer {
    Server server;
    Camera camera;

    struct Id {
        std::string server;
        int camera = 0;
    };
    Id id() const { return {server.id, camera.id}; }
};
/// Where a camera stands in the roster.
using CameraId = CameraOfServer::Id;

} // namespace ZorvaneService
