// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "service/MediaFormat.h"

namespace ZorvaneService {

/// A key frame, each unit after its length in four bytes, as JPEG. Empty on failure.
std::string jpegOf(const MediaFormat &format, const Bytes &keyFrame);

} // namespace ZorvaneService
