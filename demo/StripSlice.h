// SPDX-License-Identifier: MIT
#pragma once

#include "demo/BitStream.h"
#include "demo/StripCode.h"
#include "demo/StripLayout.h"

namespace ZorvaneDemo {

/// Appends one H.264 slice that paints `code` to `out`, with a four-byte length before it.
/// Each clip keeps its strip in a slice of its own, which every stream replaces by the slice
/// of its camera: so cameras share clips and still tell who they are.
void appendStripSlice(const StripLayout &layout, const StripPicture &picture, const StripCode &code,
                      Bytes *out);

} // namespace ZorvaneDemo
