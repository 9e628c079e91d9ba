// SPDX-License-Identifier: MIT
#pragma once

#include "companion/AvHandles.h"

namespace ZorvaneClient {
namespace Companion {

/// Opens a decoder for packets whose times are milliseconds; null if there is none.
CodecHandle openDecoder(const AVCodecParameters &parameters);

} // namespace Companion
} // namespace ZorvaneClient
