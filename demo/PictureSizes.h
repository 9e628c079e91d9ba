// SPDX-License-Identifier: MIT
#pragma once

#include <array>

#include "demo/ServiceWords.h"
#include "service/PictureSize.h"
#include "service/Quality.h"

namespace ZorvaneDemo {

/// Of the clips, by quality.
constexpr std::array<PictureSize, qualityCount> pictureSizes{{{320, 180}, {640, 360}, {1280, 720}}};

} // namespace ZorvaneDemo
