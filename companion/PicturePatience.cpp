// SPDX-License-Identifier: MIT
#include "companion/PicturePatience.h"

namespace ZorvaneClient {
namespace Companion {

namespace {

/// Limits for the first picture, for a picture out of packets, and for the next packet.
constexpr auto firstPictureLimit = std::chrono::seconds(9);
constexpr auto decoderLimit = std::chrono::seconds(9);
constexpr auto pictureLimit = std::chrono::seconds(30);

} // namespace

void PicturePatience::gotPicture(Time now)
{
    packetSince.reset();
    lastPicture = now;
}

bool PicturePatience::isOver(Time now, bool hasShown) const
{
    if (!hasShown)
        return now > firstPictureLimit;
    return (packetSince && now - *packetSince > decoderLimit) || now - lastPicture > pictureLimit;
}

} // namespace Companion
} // namespace ZorvaneClient
