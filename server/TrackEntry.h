// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>

#include "server/StreamFormat.h"

namespace ZorvaneServer {

/// The Matroska track entries of a stream: the video's, and the sound's if it has any.
Bytes trackEntries(const StreamFormat &format);
/// Puts one entry's content into the format; false for a track that isn't one of ours.
bool readTrackEntry(const std::uint8_t *data, std::size_t size, StreamFormat *format);

} // namespace ZorvaneServer
