// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>

#include "service/MediaSource.h"

namespace ZorvaneService {

/// The pictures and the sound of all cameras. Asked from any thread.
class MediaLibrary
{
public:
    virtual ~MediaLibrary() = default;

    /// Null, here and below, when there is nothing of that camera. `quality` is 0 to
    /// `qualityCount` - 1.
    virtual std::unique_ptr<LiveSource> live(const CameraId &camera, int quality) const = 0;
    /// What a receiver at `speed` needs: from `byKeyFramesFrom` on key frames, those not more
    /// often than they can be shown, and others only to make up for few; sound only at speed 1.
    virtual std::unique_ptr<ArchiveSource> archive(const CameraId &camera, int quality,
                                                   int speed) const = 0;
    /// A picture of the present as JPEG, empty when there is none.
    virtual std::string preview(const CameraId &camera, int quality) const = 0;

    static constexpr int byKeyFramesFrom = 4;
};

} // namespace ZorvaneService
