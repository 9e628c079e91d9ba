// SPDX-License-Identifier: MIT
#include "demo/ClipMedia.h"

#include "demo/ClipArchive.h"
#include "demo/ClipLive.h"
#include "service/Jpeg.h"
#include "service/LocalTime.h"

namespace ZorvaneDemo {

namespace {

constexpr int noSoundSpeed = 2;

} // namespace

std::optional<ClipCursor> ClipMedia::cursor(const CameraId &id, int quality, int speed) const
{
    const auto camera = world.inventedCamera(id);
    const auto video = camera ? clips.video(camera->scene, quality) : nullptr;
    const auto sound = clips.sound();
    if (!video || !sound)
        return std::nullopt;
    return ClipCursor(video, sound, camera->number, speed);
}

std::unique_ptr<LiveSource> ClipMedia::live(const CameraId &camera, int quality) const
{
    auto found = cursor(camera, quality, 1);
    return found ? std::make_unique<ClipLive>(*found) : nullptr;
}

std::unique_ptr<ArchiveSource> ClipMedia::archive(const CameraId &camera, int quality,
                                                  int speed) const
{
    auto found = cursor(camera, quality, speed);
    return found ? std::make_unique<ClipArchive>(*found) : nullptr;
}

std::string ClipMedia::preview(const CameraId &camera, int quality) const
{
    auto found = cursor(camera, quality, noSoundSpeed);
    if (!found)
        return {};
    MediaPacket picture;
    found->seek(nowMs());
    found->read(&picture);
    return jpegOf(*picture.format, picture.data);
}

} // namespace ZorvaneDemo
