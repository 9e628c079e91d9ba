// SPDX-License-Identifier: MIT
#pragma once

#include <optional>
#include <vector>

#include "server/FileWindow.h"
#include "server/SegmentHead.h"

namespace ZorvaneServer {

/// What a segment's file holds, whether its end was told or not. Clusters whose size is known
/// are passed over, so it is quick for all but the last one.
struct SegmentScan {
    struct Cluster {
        std::uint64_t offset;
        std::uint64_t end;
    };

    std::vector<KeyFrame> keyFrames;
    std::vector<Cluster> open;  ///< clusters that don't say where they end
    std::uint64_t wholeEnd = 0; ///< behind the last whole block
    std::int64_t lengthMs = 0;  ///< up to the end of the last picture

    /// Of the clusters from `offset` on.
    static SegmentScan from(FileWindow &file, std::uint64_t offset);
};

/// How long the last picture of a segment is taken to be seen.
struct PictureLength {
    static constexpr std::int64_t usualMs = 40;
    static constexpr std::int64_t longestMs = 2000;

    std::int64_t lastMs = -1;       ///< of the picture shown last
    std::int64_t beforeLastMs = -1; ///< of the one before, which may come after it
    std::int64_t lengthMs = usualMs;

    void take(std::int64_t timeMs);
    std::int64_t endMs() const { return lastMs < 0 ? 0 : lastMs + lengthMs; }
};

} // namespace ZorvaneServer
