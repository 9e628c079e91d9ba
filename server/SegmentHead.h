// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <vector>

#include "server/StreamFormat.h"

namespace ZorvaneServer {

/// Where a cluster lies that begins with a key frame.
struct KeyFrame {
    std::int64_t timeMs;  ///< since the segment's start
    std::uint64_t offset; ///< of the cluster in the file
};

/// What a segment's file says before its pictures. It takes the same room whether the file
/// grows or is finished, so that its end can be told in place.
struct SegmentHead {
    static constexpr std::size_t bytes = 16 * 1024;
    /// What decoders are told must leave room for the index.
    static constexpr std::size_t largestSetup = 2048;

    std::int64_t startMs = 0; ///< since the epoch
    StreamFormat format;
    std::optional<std::int64_t> lengthMs; ///< none: the file still grows
    std::uint64_t fileBytes = 0;          ///< of a finished file
    std::vector<KeyFrame> keyFrames;      ///< of a finished file; thinned out where room lacks

    Bytes encode() const;
    /// Nothing when it isn't a head of ours.
    static std::optional<SegmentHead> decode(const std::uint8_t *data, std::size_t size);
};

} // namespace ZorvaneServer
