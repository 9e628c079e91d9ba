// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>

#include "demo/Clip.h"
#include "demo/ServiceWords.h"
#include "service/MediaPacket.h"

namespace ZorvaneDemo {

/// Goes through a camera's clips, which begin anew each minute: the packets of any moment.
class ClipCursor
{
public:
    ClipCursor(std::shared_ptr<const Clip> pictures, std::shared_ptr<const Clip> tones, int number,
               int playSpeed);

    /// Goes to the key frame of the second that holds `momentMs`; its moment.
    std::int64_t seek(std::int64_t momentMs);
    /// The moment of the next picture.
    std::int64_t pictureMs() const;
    /// The next picture, or at speed 1 sound that comes before it.
    void read(MediaPacket *packet);

private:
    bool readSound(MediaPacket *packet);
    void readPicture(MediaPacket *packet);

    const std::shared_ptr<const Clip> video;
    const std::shared_ptr<const Clip> sound;
    const std::shared_ptr<const MediaFormat> format;
    const int camera; ///< its number
    const int speed;
    std::int64_t nextPicture = 0;
    std::int64_t nextSound = 0;
};

} // namespace ZorvaneDemo
