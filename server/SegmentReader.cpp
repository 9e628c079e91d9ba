// SPDX-License-Identifier: MIT
#include "server/SegmentReader.h"

#include <algorithm>

#include <fcntl.h>
#include <unistd.h>

#include "server/SegmentScan.h"

namespace ZorvaneServer {

std::unique_ptr<SegmentReader> SegmentReader::open(const std::string &path)
{
    Descriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC));
    if (!file)
        return nullptr;
    FileWindow window(file.get());
    const FileWindow::View view = window.at(0, SegmentHead::bytes);
    auto head = SegmentHead::decode(view.data, view.size);
    if (!head)
        return nullptr;
    return std::unique_ptr<SegmentReader>(new SegmentReader(std::move(file), std::move(*head)));
}

SegmentReader::SegmentReader(Descriptor segmentFile, SegmentHead segmentHead)
    : file(std::move(segmentFile))
    , head(std::move(segmentHead))
    , streamFormat(std::make_shared<StreamFormat>(head.format))
    , window(file.get())
    , walk(window, SegmentHead::bytes)
{
}

const std::vector<KeyFrame> &SegmentReader::keyFrames()
{
    if (!head.lengthMs) {
        const bool begun = !head.keyFrames.empty();
        const std::uint64_t from = begun ? head.keyFrames.back().offset : SegmentHead::bytes;
        if (begun)
            head.keyFrames.pop_back();
        const SegmentScan scan = SegmentScan::from(window, from);
        head.keyFrames.insert(head.keyFrames.end(), scan.keyFrames.begin(), scan.keyFrames.end());
    }
    return head.keyFrames;
}

const KeyFrame *SegmentReader::keyFrameFrom(std::int64_t timeMs)
{
    const std::vector<KeyFrame> &known = keyFrames();
    const auto found = std::lower_bound(
        known.begin(), known.end(), timeMs,
        [](const KeyFrame &keyFrame, std::int64_t time) { return keyFrame.timeMs < time; });
    return found == known.end() ? nullptr : &*found;
}

bool SegmentReader::seek(std::int64_t timeMs)
{
    const std::vector<KeyFrame> &known = keyFrames();
    const auto after = std::upper_bound(
        known.begin(), known.end(), timeMs,
        [](std::int64_t time, const KeyFrame &keyFrame) { return time < keyFrame.timeMs; });
    const std::uint64_t from = after == known.begin() ? SegmentHead::bytes : (after - 1)->offset;
    // Most of it is needed: the disk is asked once, not piece by piece.
    if (after != known.end() && after->offset > from)
        posix_fadvise(file.get(), off_t(from), off_t(after->offset - from), POSIX_FADV_WILLNEED);
    // A cluster may have further key frames behind its first.
    BlockWalk search(window, from);
    bool found = false;
    for (BlockWalk before = search; const auto block = search.next(); before = search) {
        if (block->isKeyPicture() && (!found || block->timeMs <= timeMs)) {
            walk = before;
            found = true;
        }
        if (found && block->track == Track::Video && block->timeMs > timeMs)
            break;
    }
    return found;
}

PacketPtr SegmentReader::next()
{
    const auto block = walk.next();
    PacketPtr packet = block ? packetOf(*block) : nullptr;
    missed = missed || (block && !packet);
    return packet;
}

PacketPtr SegmentReader::keyPictureFrom(std::int64_t timeMs)
{
    const KeyFrame *one = keyFrameFrom(timeMs);
    const KeyFrame *const end = head.keyFrames.data() + head.keyFrames.size();
    for (; one && one != end; ++one) {
        walk = BlockWalk(window, one->offset);
        if (PacketPtr packet = next(); packet && packet->isKeyPicture())
            return packet;
    }
    return nullptr;
}

PacketPtr SegmentReader::packetOf(const Block &block) const
{
    auto packet = std::make_shared<MediaPacket>();
    packet->track = block.track;
    packet->isKey = block.isKey;
    packet->momentMs = head.startMs + block.timeMs;
    packet->format = streamFormat;
    packet->data.resize(block.size);
    const ssize_t got =
        pread(file.get(), packet->data.data(), block.size, static_cast<off_t>(block.offset));
    return got == static_cast<ssize_t>(block.size) ? packet : nullptr;
}

} // namespace ZorvaneServer
