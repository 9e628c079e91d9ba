// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <utility>
#include <vector>

#include "server/SegmentName.h"
#include "server/StreamId.h"

namespace ZorvaneServer {

/// A stretch of time without a gap that anyone would see.
struct Record {
    std::int64_t startMs;
    std::int64_t endMs;
    bool isGrowing = false; ///< one of its segments is still being written
};

/// What the archive holds, made of the names of its files. Any thread may ask and tell.
class Catalogue
{
public:
    /// Segments that are no further apart make one record.
    static constexpr std::int64_t gapMs = 2000;
    static constexpr std::int64_t unknownBytes = -1;

    struct Segment {
        SegmentName name;
        std::int64_t bytes = unknownBytes;

        std::int64_t endMs = 0; ///< also of one that grows: by now
    };

    /// Finished segments of a stream, in any order; those that are known stay as they are.
    void add(const StreamId &stream, const std::vector<SegmentName> &names);
    /// A segment that grows is told with its length and size by now, until it is finished.
    void grow(const StreamId &stream, std::int64_t startMs, std::int64_t lengthMs,
              std::int64_t bytes);
    void finish(const StreamId &stream, const SegmentName &name, std::int64_t bytes);
    /// Only what grows is known from here on.
    void forgetFinished();
    /// Nothing came of the segment that grew.
    void abandon(const StreamId &stream, std::int64_t startMs);
    void remove(const StreamId &stream, const SegmentName &name);
    void setBytes(const StreamId &stream, const SegmentName &name, std::int64_t bytes);

    /// The records that touch [fromMs, toMs), ascending, apart from each other.
    std::vector<Record> records(const StreamId &stream, std::int64_t fromMs,
                                std::int64_t toMs) const;
    /// How many records touch each of the periods between neighbours of `boundaries`.
    std::vector<int> recordsBetween(const StreamId &stream,
                                    const std::vector<std::int64_t> &boundaries) const;
    /// The segment that holds the moment, or else the first one behind it.
    std::optional<Segment> segmentFrom(const StreamId &stream, std::int64_t momentMs) const;
    /// The segment that begins exactly then.
    std::optional<Segment> segmentAt(const StreamId &stream, std::int64_t startMs) const;
    /// Whether anything was recorded in [fromMs, toMs), by any stream.
    bool holdsAny(std::int64_t fromMs, std::int64_t toMs) const;
    using Place = std::pair<StreamId, SegmentName>;
    /// The finished segment that ended first, of all streams, apart from those.
    std::optional<std::pair<StreamId, Segment>> oldest(const std::vector<Place> &but) const;
    /// Finished segments whose size isn't known yet.
    std::vector<Place> unmeasured() const;
    /// Of all segments whose size is known.
    std::int64_t knownBytes() const;
    std::size_t size() const;

private:
    struct Entry {
        std::int64_t startMs;
        std::int64_t bytes;
        std::uint32_t lengthMs;
        bool isGrowing;

        std::int64_t endMs() const { return startMs + lengthMs; }
        Segment segment() const;
    };
    struct Stream {
        std::vector<Entry> entries; ///< by start
        std::int64_t longestMs = 0;

        std::vector<Entry>::const_iterator firstFrom(std::int64_t startMs) const;
        std::vector<Entry>::const_iterator firstEndingAfter(std::int64_t momentMs) const;
        std::vector<Entry>::iterator find(std::int64_t startMs, bool isGrowing,
                                          std::uint32_t lengthMs);
        void insert(const Entry &entry);
    };

    void erase(Stream &stream, std::vector<Entry>::iterator entry);
    std::vector<Record> recordsOf(const Stream &stream, std::int64_t fromMs,
                                  std::int64_t toMs) const;

    mutable std::mutex mutex;
    std::map<StreamId, Stream> streams;
    std::int64_t bytes = 0;
};

} // namespace ZorvaneServer
