// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "service/MediaFormat.h"

namespace ZorvaneService {

// Each of these appends to `out`.

/// The begin of an FLV stream: file header and metadata.
void appendFlvHeader(const MediaFormat &format, Bytes *out);
/// What a decoder must know before the next packet.
void appendFlvFormat(const MediaFormat &format, std::uint32_t timeMs, Bytes *out);
/// One picture of units with four-byte lengths, decoded at `timeMs` and shown `laterMs` after that.
void appendFlvPicture(std::uint32_t timeMs, std::uint32_t laterMs, bool keyFrame,
                      const Bytes &picture, Bytes *out);
/// One frame of sound.
void appendFlvSound(const MediaFormat &format, std::uint32_t timeMs, const Bytes &frame,
                    Bytes *out);

} // namespace ZorvaneService
