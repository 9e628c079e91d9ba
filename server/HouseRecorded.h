// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "server/ArchiveFolder.h"
#include "server/Catalogue.h"
#include "server/SegmentReader.h"
#include "server/WirePackets.h"
#include "service/MediaSource.h"

namespace ZorvaneServer {

/// What is recorded of a camera, from one segment to the next for as long as no gap lies between
/// them. A segment that grows is followed.
class HouseRecorded : public ZorvaneService::ArchiveSource
{
public:
    /// Of several streams the first one that has something is taken.
    HouseRecorded(const ArchiveFolder &archive, const Catalogue &segments,
                  std::vector<StreamId> cameraStreams, int playSpeed);

    std::optional<std::int64_t> seek(const ZorvaneService::Record &record,
                                     std::int64_t momentMs) override;
    Outcome read(ZorvaneService::MediaPacket *packet) override;

private:
    struct Found {
        StreamId stream;
        Catalogue::Segment segment;
    };

    bool isByIndex() const;
    std::optional<Found> find(std::int64_t momentMs, std::int64_t gapMs) const;
    std::optional<Found> follower(std::int64_t endMs, bool grows) const;
    bool open(const Found &found);
    Outcome afterSegment(const std::optional<Found> &after, std::int64_t endMs,
                         std::int64_t *lostMs);
    PacketPtr next();
    PacketPtr nextOfAll();
    PacketPtr nextByIndex();
    void beginGroup(std::int64_t momentMs);
    PacketPtr nextKeyPicture();

    const ArchiveFolder &folder;
    const Catalogue &catalogue;
    const std::vector<StreamId> streams;
    const int speed;
    WirePackets wire;
    std::unique_ptr<SegmentReader> reader;
    StreamId stream;         ///< whose segment is read
    PacketPtr first;         ///< read while it was looked for
    std::int64_t lastMs = 0; ///< of the pictures read
    /// The last one before that: pictures that are shown in between may come behind it.
    std::int64_t wholeUntilMs = 0;
    bool awaitsKey = false;
    std::int64_t recordEndMs = 0;   ///< as it was when it was looked for
    std::int64_t groupMs = 0;       ///< between the key pictures that the index has
    std::int64_t othersUntilMs = 0; ///< so far pictures behind the key picture are sent, too
};

} // namespace ZorvaneServer
