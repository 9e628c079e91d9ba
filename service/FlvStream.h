// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>

#include "service/DecodingTimes.h"
#include "service/Http.h"
#include "service/MediaPacket.h"

namespace ZorvaneService {

/// Turns packets into FLV for one receiver. Sound goes with the picture that it comes before.
class FlvStream
{
public:
    /// Time stamps run `speed` times as fast; the moment `zero` has stamp 0, and what comes before
    /// it too.
    FlvStream(BodySink &receiver, int speed, std::int64_t zero);

    /// False when the receiver is gone.
    bool send(const MediaPacket &packet);
    /// What was sent last reaches to `endMs`, and the picture of `momentMs` comes next as if
    /// nothing lay between. Sound that still waits for a picture is dropped.
    void join(std::int64_t endMs, std::int64_t momentMs);

private:
    bool change(const MediaPacket &packet);
    bool flush();
    std::uint32_t stamp(std::int64_t momentMs) const;

    BodySink &sink;
    const int speed;
    std::int64_t zeroMs;
    DecodingTimes decoded;
    std::int64_t lastPictureMs = 0;
    std::int64_t pictureMs = 0; ///< between the last two as they came: negative out of order
    std::shared_ptr<const MediaFormat> format;
    Bytes waiting;
};

} // namespace ZorvaneService
