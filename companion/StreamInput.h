// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include "companion/AvHandles.h"

namespace ZorvaneClient {
namespace Companion {

/// Opens an FLV stream over HTTP. Null if that was refused or isn't FLV. Nothing is probed: the
/// streams show up with their packets. `receiveBufferBytes` 0 leaves the buffer to the system.
FormatHandle openStream(const std::string &url, const std::string &proxyUrl, int receiveBufferBytes,
                        const AVIOInterruptCB &interrupt);

/// After a failed read: true if the server has sent all, false if the connection broke.
bool isEndOfStream(AVIOContext &io);

/// The demuxer makes several streams of one MPEG-4 stream; this is the one with its set-up. All
/// of them are given the number by which the demuxer finds them again.
const AVStream &firstStreamLike(AVFormatContext &input, const AVStream &stream);

/// Fills in a missing time, the packet's times being milliseconds. False if it has none at all.
bool completeTimes(AVPacket &packet);

} // namespace Companion
} // namespace ZorvaneClient
