// SPDX-License-Identifier: MIT
#pragma once

#include <optional>

#include "server/FileWindow.h"
#include "server/MediaPacket.h"

namespace ZorvaneServer {

/// Where a packet lies in a segment.
struct Block {
    Track track;
    bool isKey;
    std::int64_t timeMs;   ///< since the segment's start
    std::uint64_t cluster; ///< offset of its cluster
    std::uint64_t offset;  ///< of its data
    std::size_t size;

    std::uint64_t end() const { return offset + size; }
    bool isKeyPicture() const { return isKey && track == Track::Video; }
};

/// Goes through a segment from one whole block to the next. Behind the last one it waits: a
/// file that grows can be asked again.
class BlockWalk
{
public:
    /// Begins at the cluster at `offset`.
    BlockWalk(FileWindow &segment, std::uint64_t offset);

    std::optional<Block> next();
    /// Whether nothing is left, not even what isn't whole.
    bool isAtEnd() const { return !file->reaches(at + 1); }

private:
    std::optional<Block> end();
    bool enter(std::uint32_t id, std::uint64_t content, std::uint64_t size);

    FileWindow *file;
    std::uint64_t at;
    std::uint64_t cluster;
    std::optional<std::int64_t> clusterMs;
};

} // namespace ZorvaneServer
