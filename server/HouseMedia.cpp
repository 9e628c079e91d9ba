// SPDX-License-Identifier: MIT
#include "server/HouseMedia.h"

#include <algorithm>

#include "server/HouseLive.h"
#include "server/HouseRecorded.h"
#include "service/Quality.h"

namespace ZorvaneServer {

/// Those of the camera, the best for the quality first.
std::vector<StreamId> HouseMedia::streams(const CameraId &camera, int quality) const
{
    const std::string name = cameraName(camera);
    std::vector<StreamId> found{{name, Quality::Sub}, {name, Quality::Main}};
    if (quality == ZorvaneService::qualityCount - 1)
        std::swap(found.front(), found.back());
    return found;
}

/// Null when none of the camera's streams is there.
LiveRing *HouseMedia::ring(const CameraId &camera, int quality) const
{
    for (const StreamId &stream : streams(camera, quality)) {
        LiveRing *found = rings.find(stream);
        if (found && found->newestKey())
            return found;
    }
    return nullptr;
}

std::unique_ptr<ZorvaneService::LiveSource> HouseMedia::live(const CameraId &camera,
                                                             int quality) const
{
    LiveRing *found = ring(camera, quality);
    return found ? std::make_unique<HouseLive>(*found) : nullptr;
}

std::unique_ptr<ZorvaneService::ArchiveSource> HouseMedia::archive(const CameraId &camera,
                                                                   int quality, int speed) const
{
    return std::make_unique<HouseRecorded>(folder, catalogue, streams(camera, quality), speed);
}

std::string HouseMedia::preview(const CameraId &camera, int quality) const
{
    const LiveRing *found = ring(camera, quality);
    return found ? previews.take(*found, quality) : std::string();
}

} // namespace ZorvaneServer
