// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>

#include "server/BlockWalk.h"
#include "server/Descriptor.h"
#include "server/SegmentHead.h"

namespace ZorvaneServer {

/// Reads the packets of a segment, also of one that still grows: then `next()` finds nothing
/// at its end, and more later.
class SegmentReader
{
public:
    /// Null when the file isn't there or isn't a segment.
    static std::unique_ptr<SegmentReader> open(const std::string &path);
    SegmentReader(const SegmentReader &) = delete;
    SegmentReader &operator=(const SegmentReader &) = delete;

    const FormatPtr &format() const { return streamFormat; }
    std::int64_t startMs() const { return head.startMs; }
    /// Key frames that clusters begin with, ascending; all of them that the file has by now.
    const std::vector<KeyFrame> &keyFrames();
    /// The first of them that isn't before `timeMs`; null when there is none.
    const KeyFrame *keyFrameFrom(std::int64_t timeMs);

    /// Goes to the last key picture that isn't later than `timeMs` after the start, or to the
    /// first. False when there is none.
    bool seek(std::int64_t timeMs);
    /// The packet that follows, and its place in time as a moment; null at the end.
    PacketPtr next();
    /// Of a segment that doesn't grow any more, behind what `next()` found last: whether that was
    /// all it had.
    bool isReadWhole() const { return !missed && walk.isAtEnd(); }
    /// The picture of the first of `keyFrames()` that isn't before `timeMs` and can be read, else
    /// null. The packets behind it follow.
    PacketPtr keyPictureFrom(std::int64_t timeMs);

private:
    SegmentReader(Descriptor file, SegmentHead head);
    PacketPtr packetOf(const Block &block) const;

    Descriptor file;
    SegmentHead head;
    FormatPtr streamFormat;
    FileWindow window;
    BlockWalk walk;
    bool missed = false; ///< a packet of it can't be read
};

} // namespace ZorvaneServer
