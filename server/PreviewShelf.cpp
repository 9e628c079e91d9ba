// SPDX-License-Identifier: MIT
#include "server/PreviewShelf.h"

#include <array>

#include "server/WireFormat.h"
#include "service/Jpeg.h"
#include "service/Quality.h"

extern "C" {
#include <libswscale/swscale.h>
}

namespace ZorvaneServer {

namespace {

using ZorvaneService::FrameHandle;

/// Of the previews, by quality.
constexpr std::array<int, ZorvaneService::qualityCount> widths{320, 640, 1280};

/// The picture no wider than that, in its shape. Null on failure.
FrameHandle narrowed(FrameHandle picture, int widest)
{
    if (!picture || picture->width <= widest)
        return picture;
    FrameHandle small(av_frame_alloc());
    small->format = picture->format;
    small->color_range = picture->color_range;
    small->width = widest;
    // Colours have half of the lines.
    small->height = std::max(picture->height * widest / picture->width / 2 * 2, 2);
    const auto format = static_cast<AVPixelFormat>(picture->format);
    SwsContext *scaler = sws_getContext(picture->width, picture->height, format, small->width,
                                        small->height, format, SWS_AREA, nullptr, nullptr, nullptr);
    const bool good = scaler && av_frame_get_buffer(small.get(), 0) == 0 &&
                      sws_scale(scaler, picture->data, picture->linesize, 0, picture->height,
                                small->data, small->linesize) == small->height;
    sws_freeContext(scaler);
    return good ? std::move(small) : nullptr;
}

} // namespace

std::string PreviewShelf::take(const LiveRing &ring, int quality)
{
    const PacketPtr picture = ring.newestKey();
    if (!picture)
        return {};
    Place *place = nullptr;
    {
        const std::lock_guard<std::mutex> lock(mutex);
        place = &places[{&ring, quality}];
    }
    const std::lock_guard<std::mutex> lock(place->mutex);
    const auto now = std::chrono::steady_clock::now();
    if (picture != place->picture && (!place->picture || now - place->made >= kept)) {
        const WireFormat format = WireFormat::of(*picture->format);
        Bytes data;
        format.write(*picture, &data);
        auto decoded = ZorvaneService::decoded(format.told, data);
        const auto width = widths.at(static_cast<std::size_t>(quality));
        place->jpeg = ZorvaneService::jpegOf(narrowed(std::move(decoded), width).get());
        place->picture = picture;
        place->made = now;
    }
    return place->jpeg;
}

} // namespace ZorvaneServer
