// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>

#include "demo/Clip.h"
#include "demo/ClipStore.h"
#include "demo/Server.h"
#include "demo/ServiceWords.h"
#include "service/Http.h"

namespace ZorvaneDemo {

/// Turns moments into FLV for one receiver. A picture needs the key frame of its second.
class FlvFeed
{
public:
    FlvFeed(const ClipStore &clips, const Camera &camera, int quality, BodySink &receiver);

    /// False when there are no clips for the camera.
    bool isReady() const { return video && sound; }
    /// Begins with the key frame of the second that holds `momentMs`, at time stamp 0. False
    /// when the receiver is gone, here and below.
    bool begin(std::int64_t momentMs);
    /// Goes on with the key frame of the second that holds `momentMs`, as much later by the
    /// time stamps.
    void seek(std::int64_t momentMs);
    /// Goes on there as if nothing lay between.
    void join(std::int64_t momentMs);
    /// The moment of the next picture.
    std::int64_t nextMs() const;
    /// Sends the next picture and the sound up to it; time stamps run `speed` times as fast.
    /// From speed 4 on there are key frames only, and no sound from speed 2 on.
    bool send(int speed);

private:
    void appendSoundUpTo(std::int64_t momentMs, Bytes *out);
    std::uint32_t stamp(std::int64_t momentMs, int speed) const;

    const std::shared_ptr<const Clip> video;
    const std::shared_ptr<const Clip> sound;
    const int number;
    BodySink &sink;
    Bytes picture;
    std::int64_t zeroMs = 0; ///< moment of time stamp 0
    std::int64_t nextPicture = 0;
    std::int64_t nextSound = 0;
};

} // namespace ZorvaneDemo
