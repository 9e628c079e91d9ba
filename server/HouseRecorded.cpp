// SPDX-License-Identifier: MIT
#include "server/HouseRecorded.h"

#include <algorithm>
#include <thread>

#include "server/SegmentScan.h"
#include "server/UtcTime.h"
#include "service/MediaLibrary.h"

namespace ZorvaneServer {

namespace {

// More are seen as a movement no better, and cost reading.
constexpr int mostKeyFramesPerSecond = 12;
// With less, no movement is seen: where there are fewer key pictures, others go with them ...
constexpr int leastPicturesPerSecond = 5;
// ... as many as this speed has, which everybody can decode ...
constexpr int affordableSpeed = 2;
// ... but not where each group passes quicker than they are seen.
constexpr int fastestWithOthers = 8;
// Without pictures a player's clock soon stands, later where they have come slowly so far. So the
// others leave a short pause to the next key picture, or come where the clock would stand anyway.
constexpr std::int64_t shortPauseMs = 500;
constexpr std::int64_t longestRunOnMs = 1500;
// How often a segment is looked at that grows. Nobody sees it: what is played is sent ahead.
constexpr std::chrono::milliseconds glance{100};
// Between the last picture of a segment and the first of one that follows without a gap.
constexpr std::int64_t farthestMs = PictureLength::longestMs + Catalogue::gapMs;

} // namespace

HouseRecorded::HouseRecorded(const ArchiveFolder &archive, const Catalogue &segments,
                             std::vector<StreamId> cameraStreams, int playSpeed)
    : folder(archive)
    , catalogue(segments)
    , streams(std::move(cameraStreams))
    , speed(playSpeed)
    , wire(playSpeed == 1)
{
}

bool HouseRecorded::isByIndex() const
{
    return speed >= ZorvaneService::MediaLibrary::byKeyFramesFrom;
}

/// Of the best stream that has something at the moment, or so soon after it; else the first one
/// behind it of any.
std::optional<HouseRecorded::Found> HouseRecorded::find(std::int64_t momentMs,
                                                        std::int64_t gapMs) const
{
    std::optional<Found> nearest;
    for (const StreamId &one : streams) {
        const auto segment = catalogue.segmentFrom(one, momentMs);
        if (!segment)
            continue;
        if (segment->name.startMs <= momentMs + gapMs)
            return Found{one, *segment};
        if (!nearest || segment->name.startMs < nearest->segment.name.startMs)
            nearest = Found{one, *segment};
    }
    return nearest;
}

bool HouseRecorded::open(const Found &found)
{
    SegmentName name = found.segment.name;
    auto opened = SegmentReader::open(folder.pathOf(found.stream, name));
    if (!opened) {
        // It may have been finished just now, and has another name.
        const auto again = catalogue.segmentFrom(found.stream, name.startMs);
        if (again && again->name.startMs == name.startMs)
            opened = SegmentReader::open(folder.pathOf(found.stream, again->name));
    }
    if (!opened)
        return false;
    reader = std::move(opened);
    stream = found.stream;
    return true;
}

std::optional<std::int64_t> HouseRecorded::seek(const ZorvaneService::Record &record,
                                                std::int64_t momentMs)
{
    reader.reset();
    const std::int64_t wantedMs = std::max(momentMs, record.startMs);
    wire.beginSoundAt(wantedMs);
    awaitsKey = false;
    recordEndMs = record.endMs;
    othersUntilMs = 0;
    const auto found = find(wantedMs, 0);
    if (!found || found->segment.name.startMs >= record.endMs || !open(*found) ||
        !reader->seek(wantedMs - reader->startMs()))
        return {};
    first = reader->next();
    if (!first)
        return {};
    lastMs = wholeUntilMs = first->momentMs;
    if (isByIndex())
        beginGroup(lastMs);
    return lastMs;
}

HouseRecorded::Outcome HouseRecorded::read(ZorvaneService::MediaPacket *packet)
{
    if (wire.takeMore(packet))
        return Outcome::Packet;
    while (reader) {
        PacketPtr found = next();
        if (!found) {
            const auto current = catalogue.segmentAt(stream, reader->startMs());
            const bool grows = current && current->name.isGrowing();
            const std::int64_t endMs = std::max(current ? current->endMs : 0, lastMs);
            const auto after = follower(endMs, grows);
            // What the segment has got since comes before what follows it.
            found = next();
            if (!found && grows && !after) {
                std::this_thread::sleep_for(glance);
                return Outcome::NotYet;
            }
            if (!found) {
                const Outcome outcome = afterSegment(after, endMs, &packet->momentMs);
                if (outcome == Outcome::Packet)
                    continue;
                return outcome;
            }
        }
        if (found->track == Track::Video && found->momentMs > lastMs)
            wholeUntilMs = std::exchange(lastMs, found->momentMs);
        if (wire.turn(*found, found->momentMs, packet))
            return Outcome::Packet;
    }
    return Outcome::End;
}

/// Goes on where the segment that was read ends: `Packet` when there is something. What is lost
/// is so from `lostMs` on.
HouseRecorded::Outcome HouseRecorded::afterSegment(const std::optional<Found> &after,
                                                   std::int64_t endMs, std::int64_t *lostMs)
{
    const bool isWhole = isByIndex() || reader->isReadWhole();
    *lostMs = isWhole ? endMs : wholeUntilMs + 1;
    if (!isWhole && (first = reader->keyPictureFrom(lastMs + 1 - reader->startMs())))
        return Outcome::Lost;
    // A player that got nothing for long would hold up those that play in step with it.
    const bool isNear = after && after->segment.name.startMs <= lastMs + farthestMs;
    if (after && (isWhole || isNear) && open(*after)) {
        awaitsKey = true;
        reader->seek(lastMs + 1 - reader->startMs());
        return isWhole ? Outcome::Packet : Outcome::Lost;
    }
    reader.reset();
    // What the record still had may have been removed.
    return isWhole && !after && endMs + farthestMs >= recordEndMs ? Outcome::End : Outcome::Lost;
}

/// What goes on where the segment ends, if anything does. As long as it grows only its own stream
/// can.
std::optional<HouseRecorded::Found> HouseRecorded::follower(std::int64_t endMs, bool grows) const
{
    auto found = find(endMs, farthestMs);
    if (const auto own = catalogue.segmentFrom(stream, endMs); grows)
        found = own ? std::optional<Found>({stream, *own}) : std::nullopt;
    if (!found || found->segment.name.startMs > endMs + farthestMs)
        return {};
    const bool isSame = found->stream == stream && found->segment.name.startMs == reader->startMs();
    return isSame ? std::nullopt : found;
}

PacketPtr HouseRecorded::next()
{
    if (first)
        return std::exchange(first, nullptr);
    return isByIndex() ? nextByIndex() : nextOfAll();
}

PacketPtr HouseRecorded::nextOfAll()
{
    while (PacketPtr packet = reader->next()) {
        if (awaitsKey && !(packet->isKeyPicture() && packet->momentMs > lastMs))
            continue;
        awaitsKey = false;
        return packet;
    }
    return nullptr;
}

/// A key picture, or one of those behind it, of which none comes without the ones before.
PacketPtr HouseRecorded::nextByIndex()
{
    while (lastMs < othersUntilMs) {
        PacketPtr packet = reader->next();
        if (!packet || packet->momentMs >= othersUntilMs)
            break;
        if (packet->track == Track::Video)
            return packet;
    }
    othersUntilMs = 0;
    PacketPtr packet = nextKeyPicture();
    if (packet)
        beginGroup(packet->momentMs);
    return packet;
}

/// Says how much of the group goes with its key picture.
void HouseRecorded::beginGroup(std::int64_t momentMs)
{
    const std::int64_t timeMs = momentMs - reader->startMs();
    // One that grows, or is the last of its segment, is as long as the one before.
    if (const KeyFrame *after = reader->keyFrameFrom(timeMs + 1))
        groupMs = after->timeMs - timeMs;
    const std::int64_t playedMs = groupMs / speed;
    const std::int64_t othersMs = playedMs * affordableSpeed / speed;
    const bool isWanted =
        speed <= fastestWithOthers && playedMs * leastPicturesPerSecond > secondMs;
    const bool keepsTime = playedMs - othersMs <= shortPauseMs || playedMs > longestRunOnMs;
    othersUntilMs = isWanted && keepsTime ? momentMs + othersMs * speed : 0;
}

PacketPtr HouseRecorded::nextKeyPicture()
{
    const std::int64_t stepMs = speed * secondMs / mostKeyFramesPerSecond;
    return reader->keyPictureFrom(lastMs + stepMs - reader->startMs());
}

} // namespace ZorvaneServer
