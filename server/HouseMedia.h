// SPDX-License-Identifier: MIT
#pragma once

#include "server/ArchiveFolder.h"
#include "server/CameraNames.h"
#include "server/Catalogue.h"
#include "server/LiveRings.h"
#include "server/PreviewShelf.h"
#include "service/MediaLibrary.h"

namespace ZorvaneServer {

/// What the house's cameras send and have sent. The lower qualities are those of a camera's sub
/// stream where it has one. What is given out needs all that the library was made of.
class HouseMedia : public ZorvaneService::MediaLibrary
{
public:
    using CameraId = ZorvaneService::CameraId;

    HouseMedia(const ArchiveFolder &archive, const Catalogue &segments, LiveRings &live,
               CameraNames nameOf)
        : folder(archive), catalogue(segments), rings(live), cameraName(std::move(nameOf))
    {
    }

    std::unique_ptr<ZorvaneService::LiveSource> live(const CameraId &camera,
                                                     int quality) const override;
    std::unique_ptr<ZorvaneService::ArchiveSource> archive(const CameraId &camera, int quality,
                                                           int speed) const override;
    std::string preview(const CameraId &camera, int quality) const override;

private:
    std::vector<StreamId> streams(const CameraId &camera, int quality) const;
    LiveRing *ring(const CameraId &camera, int quality) const;

    const ArchiveFolder &folder;
    const Catalogue &catalogue;
    LiveRings &rings;
    const CameraNames cameraName;
    mutable PreviewShelf previews;
};

} // namespace ZorvaneServer
