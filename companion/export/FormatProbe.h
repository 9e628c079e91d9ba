// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "companion/AvHandles.h"

namespace ZorvaneClient {
namespace Companion {

/// Completes what is known of a stream by decoding the first picture or sound of `packets`:
/// size, sample rate, channels. False if nothing of them can be decoded.
bool completeFormat(AVCodecParameters &parameters, const std::vector<const AVPacket *> &packets);

} // namespace Companion
} // namespace ZorvaneClient
