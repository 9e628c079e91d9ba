// SPDX-License-Identifier: MIT
#include "server/SegmentScan.h"

#include <utility>

#include "server/BlockWalk.h"
#include "server/Ebml.h"
#include "server/MatroskaIds.h"

namespace ZorvaneServer {

namespace {

/// The header of a cluster of ours, which has room for its size; nothing for any other element.
std::optional<Ebml::Header> clusterAt(FileWindow &file, std::uint64_t offset)
{
    const FileWindow::View head = file.at(offset, Ebml::longestHeader);
    const auto element = Ebml::readHeader(head.data, head.size);
    if (!element || element->id != MatroskaId::Cluster || element->bytes != Ebml::longestHeader)
        return {};
    return element;
}

} // namespace

void PictureLength::take(std::int64_t timeMs)
{
    if (timeMs == lastMs)
        return;
    if (timeMs > lastMs)
        beforeLastMs = std::exchange(lastMs, timeMs);
    else
        beforeLastMs = std::max(beforeLastMs, timeMs);
    if (beforeLastMs >= 0 && lastMs - beforeLastMs <= longestMs)
        lengthMs = lastMs - beforeLastMs;
}

SegmentScan SegmentScan::from(FileWindow &file, std::uint64_t offset)
{
    SegmentScan scan;
    scan.wholeEnd = offset;
    PictureLength length;
    while (const auto cluster = clusterAt(file, offset)) {
        BlockWalk walk(file, offset);
        auto block = walk.next();
        if (!block || block->cluster != offset)
            break;
        if (block->isKeyPicture())
            scan.keyFrames.push_back({block->timeMs, offset});
        const std::uint64_t told =
            cluster->size == Ebml::unknownSize ? 0 : offset + cluster->bytes + cluster->size;
        // Only what stands before a begun cluster is certain to be there.
        if (told > block->end() && clusterAt(file, told)) {
            const auto follower = BlockWalk(file, told).next();
            if (follower && follower->cluster == told) {
                offset = told;
                continue;
            }
        }
        // Told by the last cluster alone, whichever of those before it are passed over.
        length = {};
        if (!scan.keyFrames.empty())
            length.take(scan.keyFrames.back().timeMs);
        const std::uint64_t begin = offset;
        while (block && block->cluster == begin) {
            scan.wholeEnd = block->end();
            if (block->track == Track::Video)
                length.take(block->timeMs);
            block = walk.next();
        }
        if (scan.wholeEnd != told)
            scan.open.push_back({begin, scan.wholeEnd});
        if (!block)
            break;
        offset = block->cluster;
    }
    scan.lengthMs = length.endMs();
    return scan;
}

} // namespace ZorvaneServer
