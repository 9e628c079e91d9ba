// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include "demo/Clip.h"

namespace ZorvaneDemo {

/// The begin of an FLV stream: file header, metadata and the H.264 sequence header.
void appendFlvHeader(const Clip &video, Bytes *out);
/// One picture of units with four-byte lengths.
void appendFlvVideo(std::uint32_t timeMs, bool keyFrame, const Bytes &picture, Bytes *out);
/// One MP3 frame.
void appendFlvSound(std::uint32_t timeMs, const std::uint8_t *data, std::size_t size, Bytes *out);

} // namespace ZorvaneDemo
