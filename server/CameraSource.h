// SPDX-License-Identifier: MIT
#pragma once

#include <string>

namespace ZorvaneServer {

/// Where a stream comes from, as it stands in the configuration.
struct CameraSource {
    std::string url;
    bool overUdp = false; ///< of RTSP only
    bool withSound = true;

    /// "rtsp", "rtsps", "http", "https" or "file"; empty for an address that isn't understood.
    std::string scheme() const;
    bool isFile() const { return scheme() == "file"; }
};

} // namespace ZorvaneServer
