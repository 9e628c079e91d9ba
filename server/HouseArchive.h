// SPDX-License-Identifier: MIT
#pragma once

#include "server/CameraNames.h"
#include "server/Catalogue.h"
#include "service/ArchiveCatalogue.h"

namespace ZorvaneServer {

/// What is recorded of the house's cameras, in whichever of its streams. A record that goes on
/// beyond what is asked for is told up to an hour beyond it.
class HouseArchive : public ZorvaneService::ArchiveCatalogue
{
public:
    HouseArchive(const Catalogue &segments, CameraNames nameOf)
        : catalogue(segments), cameraName(std::move(nameOf))
    {
    }

    std::vector<ZorvaneService::Record> records(const ZorvaneService::CameraId &camera,
                                                std::int64_t startMs,
                                                std::int64_t endMs) const override;

private:
    const Catalogue &catalogue;
    const CameraNames cameraName;
};

} // namespace ZorvaneServer
