// SPDX-License-Identifier: MIT
#include "server/CameraSource.h"

#include <array>

namespace ZorvaneServer {

std::string CameraSource::scheme() const
{
    constexpr std::array network = {"rtsp", "rtsps", "http", "https"};
    const std::size_t colon = url.find(':');
    std::string name = url.substr(0, colon);
    if (colon == std::string::npos || url.find_first_of(" \t", colon) == colon + 1)
        return {};
    if (name == "file")
        return url.size() > colon + 1 ? name : std::string();
    const std::size_t host = colon + 3;
    for (const char *known : network) {
        if (name == known && url.compare(colon, 3, "://") == 0 && url.size() > host &&
            url[host] != '/')
            return name;
    }
    return {};
}

} // namespace ZorvaneServer
