// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>

#include "server/Descriptor.h"
#include "server/MediaPacket.h"
#include "server/SegmentHead.h"
#include "server/SegmentScan.h"

namespace ZorvaneServer {

/// Appends packets to one segment's file. Each is on its way to the disk whole with one write,
/// so that a file whose writer has died misses nothing but a last packet that was cut off.
class SegmentWriter
{
public:
    enum class Outcome { Written, NoRoom, Failed };

    /// Begins the file in the folder; it must not be there yet. It is locked for as long as this
    /// object lives, which tells it from what was left. Null on failure, with `errno`.
    static std::unique_ptr<SegmentWriter> create(int folder, const std::string &fileName,
                                                 FormatPtr format, std::int64_t startMs);

    /// The first packet must be a key picture. What wasn't written leaves no trace.
    Outcome append(const MediaPacket &packet);
    /// Puts onto the disk what was appended.
    bool sync() const;
    /// Tells index and length at the beginning of the file and puts all onto the disk.
    bool finish();

    const FormatPtr &format() const { return streamFormat; }
    std::int64_t startMs() const { return head.startMs; }
    std::int64_t lengthMs() const { return length.endMs(); }
    std::uint64_t bytes() const { return end; }

private:
    SegmentWriter(Descriptor file, FormatPtr format, std::int64_t startMs);
    bool beginsCluster(const MediaPacket &packet, std::int64_t timeMs) const;
    bool closeCluster() const;

    Descriptor file;
    FormatPtr streamFormat;
    SegmentHead head;
    PictureLength length;
    std::uint64_t end = SegmentHead::bytes;
    std::uint64_t cluster = 0; ///< offset of the open one; 0: none
    std::int64_t clusterMs = 0;
};

/// Puts the size of a cluster that ends at `end` over the one that it was begun with.
bool closeCluster(int file, const SegmentScan::Cluster &cluster);
/// Puts the head over the room that was kept for it.
bool writeHead(int file, const SegmentHead &head);

} // namespace ZorvaneServer
