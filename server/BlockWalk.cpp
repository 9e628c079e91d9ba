// SPDX-License-Identifier: MIT
#include "server/BlockWalk.h"

#include "server/Ebml.h"
#include "server/MatroskaIds.h"

namespace ZorvaneServer {

namespace {

constexpr std::size_t blockHeader = 4; // track, time in two bytes, flags
constexpr std::uint8_t keyFlag = 0x80;
constexpr std::uint8_t trackMark = 0x80;
constexpr std::uint64_t largestTime = 8;
// No picture and no void is larger; a size beyond it is damage.
constexpr std::uint64_t largestElement = std::uint64_t(256) * 1024 * 1024;

} // namespace

BlockWalk::BlockWalk(FileWindow &segment, std::uint64_t offset)
    : file(&segment), at(offset), cluster(offset)
{
}

std::optional<Block> BlockWalk::next()
{
    for (;;) {
        const FileWindow::View head = file->at(at, Ebml::longestHeader + blockHeader);
        const auto element = Ebml::readHeader(head.data, head.size);
        if (!element)
            return end();
        const std::uint64_t content = at + element->bytes;
        if (element->id == MatroskaId::Cluster) {
            cluster = at;
            clusterMs.reset();
            at = content;
            continue;
        }
        if (element->size > largestElement || !file->reaches(content + element->size))
            return end();
        if (element->id != MatroskaId::SimpleBlock) {
            if (!enter(element->id, content, element->size))
                return {};
            at = content + element->size;
            continue;
        }
        if (!clusterMs || element->size <= blockHeader || head.size < element->bytes + blockHeader)
            return {};
        const std::uint8_t *block = head.data + element->bytes;
        const unsigned track = block[0] & ~trackMark;
        if (track != unsigned(Track::Video) && track != unsigned(Track::Sound))
            return {};
        const auto relativeMs = static_cast<std::int16_t>(block[1] << 8 | block[2]);
        at = content + element->size;
        return Block{Track(track),
                     (block[3] & keyFlag) != 0,
                     *clusterMs + relativeMs,
                     cluster,
                     content + blockHeader,
                     static_cast<std::size_t>(element->size - blockHeader)};
    }
}

std::optional<Block> BlockWalk::end()
{
    file->forget();
    return {};
}

/// False for what has no place between blocks.
bool BlockWalk::enter(std::uint32_t id, std::uint64_t content, std::uint64_t size)
{
    if (id != MatroskaId::Timestamp || size > largestTime)
        return false;
    const FileWindow::View time = file->at(content, size);
    constexpr std::int64_t latestMs = std::int64_t(1) << 48;
    const auto value = static_cast<std::int64_t>(Ebml::readUnsigned(time.data, time.size));
    if (value < 0 || value > latestMs)
        return false;
    clusterMs = value;
    return true;
}

} // namespace ZorvaneServer
