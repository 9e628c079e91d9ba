// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "demo/Clip.h"

namespace ZorvaneDemo {

/// The clip's picture of the second that holds `momentMs`, with the strip of camera
/// `number`, as JPEG. Empty on failure.
std::string previewJpeg(const Clip &clip, int number, std::int64_t momentMs);

} // namespace ZorvaneDemo
