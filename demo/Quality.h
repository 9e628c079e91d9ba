// SPDX-License-Identifier: MIT
#pragma once

#include <array>

#include "demo/Http.h"

namespace ZorvaneDemo {

constexpr int qualityCount = 3;

struct PictureSize {
    int width;
    int height;
};

/// Picture sizes by the quality of a stream request, low to high.
constexpr std::array<PictureSize, qualityCount> pictureSizes{{{320, 180}, {640, 360}, {1280, 720}}};

/// The quality that a request asks for, 0 to `qualityCount` - 1; without a number the lowest.
int requestedQuality(const HttpRequest &request);

} // namespace ZorvaneDemo
