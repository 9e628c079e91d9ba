// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

struct AVFrame;

namespace ZorvaneClient {
namespace Companion {

struct PictureSize {
    int width = 0;
    int height = 0;

    bool operator==(const PictureSize &other) const
    {
        return width == other.width && height == other.height;
    }
    bool operator!=(const PictureSize &other) const { return !(*this == other); }
};

/// The size itself, or the largest one of the same aspect that fits into the frame file.
/// Nothing (0 x 0) for what is no picture.
PictureSize fittedSize(PictureSize size);

/// Writes decoded pictures as blue, green, red, alpha bytes with alpha 255.
class PictureConverter
{
public:
    /// Converts to `fittedSize()` of the picture at `pixels`, rows without padding. False if
    /// the picture's format is not known; then nothing is written.
    bool convert(const AVFrame &picture, uint8_t *pixels);

private:
    /// Planes of a picture that had to be scaled down.
    std::vector<uint8_t> scaled[3];
};

} // namespace Companion
} // namespace ZorvaneClient
