// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "demo/Clip.h"
#include "demo/PictureSizes.h"
#include "demo/ServiceWords.h"
#include "service/AvHandles.h"

namespace ZorvaneDemo {

/// Encodes the minute of one quality into a clip: H.264, a key frame each second, a strip
/// in a slice of its own that is left out of the clip.
class VideoEncoder
{
public:
    /// `bitsPerSecond` 0: with a strip, of constant quality and quickly made. Else without one, and
    /// as hard to decode as what cameras make of that rate.
    VideoEncoder(PictureSize size, int framesPerSecond, int bitsPerSecond);

    /// Empty while all is well, else what failed.
    const std::string &error() const { return failure; }

    /// The visible lines of a plane (0 to 2) of the picture to encode next; what is not
    /// written keeps the picture before. The last lines belong to the strip.
    std::uint8_t *line(int plane, int y);
    /// Visible luma lines above the strip.
    int sceneHeight() const;

    bool encode();
    /// Drains the encoder and writes the clip.
    bool finish(const std::string &fileName);

private:
    bool open(int framesPerSecond, int bitsPerSecond);
    void layOutStrip();
    int lineBytes(int plane) const;
    std::uint8_t *codedLine(int plane, int y);
    void paintFixedLines();
    bool receive();
    bool take(const AVPacket *packet);
    bool fail(const std::string &what);

    PictureSize size;
    const bool withStrip;
    int codedHeight = 0;
    int cropTop = 0;
    std::int64_t frameNumber = 0;
    CodecHandle codec;
    FrameHandle frame;
    PacketHandle output;
    ClipWriter writer;
    std::string failure;
};

} // namespace ZorvaneDemo
