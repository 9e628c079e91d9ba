// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include "demo/ClipCursor.h"
#include "demo/ClipStore.h"
#include "demo/World.h"
#include "service/MediaLibrary.h"

namespace ZorvaneDemo {

/// What the world's cameras show, by their scenes' clips.
class ClipMedia : public MediaLibrary
{
public:
    ClipMedia(const World &cameras, const ClipStore &clipStore) : world(cameras), clips(clipStore)
    {
    }

    std::unique_ptr<LiveSource> live(const CameraId &camera, int quality) const override;
    std::unique_ptr<ArchiveSource> archive(const CameraId &camera, int quality,
                                           int speed) const override;
    /// The picture with which the present second begins.
    std::string preview(const CameraId &camera, int quality) const override;

private:
    std::optional<ClipCursor> cursor(const CameraId &id, int quality, int speed) const;

    const World &world;
    const ClipStore &clips;
};

} // namespace ZorvaneDemo
