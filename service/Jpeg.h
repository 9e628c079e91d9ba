// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "service/AvHandles.h"
#include "service/MediaFormat.h"

namespace ZorvaneService {

/// The picture of a key frame, each unit after its length in four bytes. Null on failure.
FrameHandle decoded(const MediaFormat &format, const Bytes &keyFrame);
/// A picture, which may be changed for it, as JPEG. Empty on failure, here and below.
std::string jpegOf(AVFrame *picture);
/// A key frame as JPEG.
std::string jpegOf(const MediaFormat &format, const Bytes &keyFrame);

} // namespace ZorvaneService
