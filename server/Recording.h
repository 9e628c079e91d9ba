// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>

#include "server/ArchiveFolder.h"
#include "server/Catalogue.h"
#include "server/KeepRules.h"
#include "server/SegmentFinisher.h"

namespace ZorvaneServer {

/// Puts one stream's packets into its segments. Of one thread.
class Recording
{
public:
    using Outcome = SegmentWriter::Outcome;

    /// `ruleNow` is asked at the begin of each segment: the disk may be another one by then.
    Recording(StreamId streamId, std::function<SegmentRule()> ruleNow, const ArchiveFolder &archive,
              Catalogue &known, SegmentFinisher &end);

    /// What wasn't written can be tried again. Pictures without their key picture are passed
    /// over.
    Outcome write(const MediaPacket &packet);
    /// Nothing follows for now: the segment is finished.
    void close();
    std::int64_t takeBytes() { return std::exchange(fresh, 0); }

private:
    bool endsBefore(const MediaPacket &picture) const;
    Outcome begin(const MediaPacket &packet);

    const StreamId stream;
    const std::function<SegmentRule()> nextRule;
    SegmentRule rule;
    const ArchiveFolder &folder;
    Catalogue &catalogue;
    SegmentFinisher &finisher;
    std::shared_ptr<SegmentWriter> segment;
    std::uint32_t run = 0;
    std::int64_t toldMs = 0; ///< length that the catalogue knows
    std::int64_t fresh = 0;  ///< bytes written that nobody has asked for yet
};

} // namespace ZorvaneServer
