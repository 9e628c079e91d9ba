// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include "demo/ServiceWords.h"
#include "demo/World.h"
#include "service/ArchiveCatalogue.h"

namespace ZorvaneDemo {

/// What is recorded of the world's cameras: the records that a camera was given or those of its
/// plan for the last days.
class Archive : public ArchiveCatalogue
{
public:
    explicit Archive(const World &cameras) : world(cameras) {}

    std::vector<Record> records(const CameraId &camera, std::int64_t startMs,
                                std::int64_t endMs) const override;

private:
    const World &world;
};

} // namespace ZorvaneDemo
