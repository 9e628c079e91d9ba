// SPDX-License-Identifier: MIT
#include "server/SegmentHead.h"

#include <algorithm>

#include "server/Ebml.h"
#include "server/MatroskaIds.h"
#include "server/MediaPacket.h"
#include "server/TrackEntry.h"

namespace ZorvaneServer {

using namespace Ebml;

namespace {

constexpr char writer[] = "zorvane-server";
constexpr std::uint64_t nanosecondsPerMs = 1'000'000;
constexpr std::int64_t epochOf2001Ms = 978'307'200'000;
constexpr std::size_t seekHeadRoom = 96;
constexpr std::size_t durationBytes = 11;
constexpr std::size_t longestCue = 24;
constexpr std::size_t cuesHeader = 12;

Bytes ebmlHeader()
{
    Bytes content;
    appendUnsigned(MatroskaId::EbmlVersion, 1, &content);
    appendUnsigned(MatroskaId::EbmlReadVersion, 1, &content);
    appendUnsigned(MatroskaId::EbmlMaxIdLength, 4, &content);
    appendUnsigned(MatroskaId::EbmlMaxSizeLength, 8, &content);
    appendText(MatroskaId::DocType, "matroska", &content);
    appendUnsigned(MatroskaId::DocTypeVersion, 4, &content);
    appendUnsigned(MatroskaId::DocTypeReadVersion, 2, &content);
    Bytes header;
    appendElement(MatroskaId::Ebml, content, &header);
    return header;
}

Bytes info(const SegmentHead &head)
{
    Bytes content;
    appendUnsigned(MatroskaId::TimestampScale, nanosecondsPerMs, &content);
    if (head.lengthMs)
        appendNumber(MatroskaId::Duration, static_cast<double>(*head.lengthMs), &content);
    else
        appendVoid(durationBytes, &content);
    const auto date = static_cast<std::uint64_t>(head.startMs - epochOf2001Ms) * nanosecondsPerMs;
    Bytes dateBytes;
    for (std::size_t i = sizeof date; i-- > 0;)
        dateBytes.push_back(static_cast<std::uint8_t>(date >> 8 * i));
    appendElement(MatroskaId::DateUtc, dateBytes, &content);
    appendText(MatroskaId::MuxingApp, writer, &content);
    appendText(MatroskaId::WritingApp, writer, &content);
    Bytes element;
    appendElement(MatroskaId::Info, content, &element);
    return element;
}

/// As many key frames as `room` holds, evenly chosen.
Bytes cues(const std::vector<KeyFrame> &keyFrames, std::uint64_t dataStart, std::size_t room)
{
    const std::size_t most = (room - cuesHeader) / longestCue;
    const std::size_t step = (keyFrames.size() + most - 1) / most;
    Bytes content;
    for (std::size_t i = 0; i < keyFrames.size(); i += step) {
        Bytes place;
        appendUnsigned(MatroskaId::CueTrack, std::uint64_t(Track::Video), &place);
        appendUnsigned(MatroskaId::CueClusterPosition, keyFrames[i].offset - dataStart, &place);
        Bytes point;
        appendUnsigned(MatroskaId::CueTime, static_cast<std::uint64_t>(keyFrames[i].timeMs),
                       &point);
        appendElement(MatroskaId::CueTrackPositions, place, &point);
        appendElement(MatroskaId::CuePoint, point, &content);
    }
    Bytes element;
    appendElement(MatroskaId::Cues, content, &element);
    return element;
}

void appendSeek(std::uint32_t id, std::uint64_t position, Bytes *out)
{
    Bytes idBytes;
    appendId(id, &idBytes);
    Bytes seek;
    appendElement(MatroskaId::SeekId, idBytes, &seek);
    appendUnsigned(MatroskaId::SeekPosition, position, &seek);
    appendElement(MatroskaId::Seek, seek, out);
}

void append(const Bytes &part, Bytes *out)
{
    out->insert(out->end(), part.begin(), part.end());
}

/// Calls `take(id, content, size)` for each element; one that is cut off is the last, shortened.
template <typename Taker>
void forEachElement(const std::uint8_t *data, std::size_t size, const Taker &take)
{
    while (const auto header = readHeader(data, size)) {
        data += header->bytes;
        size -= header->bytes;
        const std::size_t content = std::min<std::uint64_t>(header->size, size);
        take(header->id, data, content);
        data += content;
        size -= content;
    }
}

std::optional<KeyFrame> readCue(const std::uint8_t *cue, std::size_t cueSize)
{
    KeyFrame keyFrame{-1, 0};
    forEachElement(cue, cueSize, [&](std::uint32_t id, const std::uint8_t *data, std::size_t size) {
        if (id == MatroskaId::CueTime)
            keyFrame.timeMs = static_cast<std::int64_t>(readUnsigned(data, size));
        if (id != MatroskaId::CueTrackPositions)
            return;
        forEachElement(data, size,
                       [&](std::uint32_t inner, const std::uint8_t *value, std::size_t bytes) {
                           if (inner == MatroskaId::CueClusterPosition)
                               keyFrame.offset = readUnsigned(value, bytes);
                       });
    });
    if (keyFrame.timeMs < 0)
        return {};
    return keyFrame;
}

} // namespace

Bytes SegmentHead::encode() const
{
    Bytes out = ebmlHeader();
    const std::size_t dataStart = out.size() + sizeof(std::uint32_t) + patchableSize;
    appendId(MatroskaId::Segment, &out);
    appendSize(lengthMs ? fileBytes - dataStart : unknownSize, &out, patchableSize);

    const Bytes infoElement = info(*this);
    Bytes tracks;
    appendElement(MatroskaId::Tracks, trackEntries(format), &tracks);
    const std::size_t tracksAt = seekHeadRoom + infoElement.size();
    const std::size_t cuesAt = tracksAt + tracks.size();
    Bytes seekHead;
    appendSeek(MatroskaId::Info, seekHeadRoom, &seekHead);
    appendSeek(MatroskaId::Tracks, tracksAt, &seekHead);
    if (lengthMs)
        appendSeek(MatroskaId::Cues, cuesAt, &seekHead);
    appendElement(MatroskaId::SeekHead, seekHead, &out);
    appendVoid(dataStart + seekHeadRoom - out.size(), &out);
    append(infoElement, &out);
    append(tracks, &out);
    if (lengthMs && !keyFrames.empty())
        append(cues(keyFrames, dataStart, bytes - out.size()), &out);
    appendVoid(bytes - out.size(), &out);
    return out;
}

std::optional<SegmentHead> SegmentHead::decode(const std::uint8_t *data, std::size_t size)
{
    const auto ebml = readHeader(data, size);
    if (!ebml || ebml->id != MatroskaId::Ebml || ebml->size > size - ebml->bytes)
        return {};
    const std::size_t segmentAt = ebml->bytes + ebml->size;
    const auto segment = readHeader(data + segmentAt, size - segmentAt);
    if (!segment || segment->id != MatroskaId::Segment || size < bytes)
        return {};
    const std::size_t dataStart = segmentAt + segment->bytes;

    SegmentHead head;
    bool hasTracks = false;
    const auto takeInfo = [&](std::uint32_t id, const std::uint8_t *value, std::size_t length) {
        if (id == MatroskaId::Duration) {
            const double duration = readNumber(value, length);
            if (duration >= 0 && duration < double(epochOf2001Ms))
                head.lengthMs = static_cast<std::int64_t>(duration);
        } else if (id == MatroskaId::DateUtc) {
            head.startMs = static_cast<std::int64_t>(readUnsigned(value, length)) /
                               std::int64_t(nanosecondsPerMs) +
                           epochOf2001Ms;
        }
    };
    const auto take = [&](std::uint32_t id, const std::uint8_t *value, std::size_t length) {
        if (id == MatroskaId::Info)
            forEachElement(value, length, takeInfo);
        if (id == MatroskaId::Tracks) {
            forEachElement(value, length,
                           [&](std::uint32_t, const std::uint8_t *entry, std::size_t entrySize) {
                               hasTracks |= readTrackEntry(entry, entrySize, &head.format);
                           });
        }
        if (id == MatroskaId::Cues) {
            forEachElement(value, length,
                           [&](std::uint32_t, const std::uint8_t *cue, std::size_t cueSize) {
                               if (auto keyFrame = readCue(cue, cueSize)) {
                                   keyFrame->offset += dataStart;
                                   head.keyFrames.push_back(*keyFrame);
                               }
                           });
        }
    };
    forEachElement(data + dataStart, bytes - dataStart, take);
    if (!hasTracks || head.format.videoSetup.empty())
        return {};
    return head;
}

} // namespace ZorvaneServer
