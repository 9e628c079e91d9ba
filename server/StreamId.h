// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <tuple>

namespace ZorvaneServer {

enum class Quality : unsigned char { Main, Sub };

/// "main" or "sub", as in the archive's folders.
constexpr const char *qualityName(Quality quality)
{
    return quality == Quality::Main ? "main" : "sub";
}

/// One of the streams of a camera, which goes by its name.
struct StreamId {
    std::string camera;
    Quality quality = Quality::Main;

    /// For people.
    std::string text() const { return camera + " (" + qualityName(quality) + ')'; }
    bool operator<(const StreamId &other) const
    {
        return std::tie(camera, quality) < std::tie(other.camera, other.quality);
    }
    bool operator==(const StreamId &other) const
    {
        return camera == other.camera && quality == other.quality;
    }
};

} // namespace ZorvaneServer
