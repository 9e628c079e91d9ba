// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <functional>
#include <string>

#include "demo/PictureSizes.h"
#include "demo/ServiceWords.h"

namespace ZorvaneDemo {

/// Draws the minute of one scene once and encodes it in every quality.
struct ClipMaker {
    int scene = 0;
    int framesPerSecond = 25;
    bool noise = false; ///< of ClipForm
    std::array<std::string, qualityCount> fileNames;
    /// Told after each second of pictures.
    std::function<void()> secondDone;

    /// Empty on success, else what failed.
    std::string run() const;
};

} // namespace ZorvaneDemo
