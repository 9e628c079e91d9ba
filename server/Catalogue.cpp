// SPDX-License-Identifier: MIT
#include "server/Catalogue.h"

#include <algorithm>

namespace ZorvaneServer {

namespace {

using Lock = std::lock_guard<std::mutex>;

} // namespace

Catalogue::Segment Catalogue::Entry::segment() const
{
    SegmentName name{startMs, {}};
    if (!isGrowing)
        name.lengthMs = lengthMs;
    return {name, bytes, endMs()};
}

std::vector<Catalogue::Entry>::const_iterator
Catalogue::Stream::firstFrom(std::int64_t startMs) const
{
    return std::lower_bound(
        entries.begin(), entries.end(), startMs,
        [](const Entry &one, std::int64_t moment) { return one.startMs < moment; });
}

/// The first entry that can end after the moment; most before it in the list end earlier.
std::vector<Catalogue::Entry>::const_iterator
Catalogue::Stream::firstEndingAfter(std::int64_t momentMs) const
{
    auto entry = firstFrom(momentMs - longestMs);
    while (entry != entries.end() && entry->endMs() <= momentMs)
        ++entry;
    return entry;
}

std::vector<Catalogue::Entry>::iterator
Catalogue::Stream::find(std::int64_t startMs, bool isGrowing, std::uint32_t lengthMs)
{
    auto entry = entries.begin() + (firstFrom(startMs) - entries.begin());
    for (; entry != entries.end() && entry->startMs == startMs; ++entry) {
        if (entry->isGrowing == isGrowing && (isGrowing || entry->lengthMs == lengthMs))
            return entry;
    }
    return entries.end();
}

void Catalogue::Stream::insert(const Entry &entry)
{
    longestMs = std::max<std::int64_t>(longestMs, entry.lengthMs);
    const auto place = std::upper_bound(
        entries.begin(), entries.end(), entry.startMs,
        [](std::int64_t startMs, const Entry &one) { return startMs < one.startMs; });
    entries.insert(place, entry);
}

void Catalogue::add(const StreamId &id, const std::vector<SegmentName> &names)
{
    const Lock lock(mutex);
    Stream &stream = streams[id];
    std::vector<Entry> fresh;
    fresh.reserve(stream.entries.size() + names.size());
    for (const SegmentName &name : names) {
        const auto lengthMs = static_cast<std::uint32_t>(name.lengthMs.value_or(0));
        stream.longestMs = std::max<std::int64_t>(stream.longestMs, lengthMs);
        if (stream.find(name.startMs, false, lengthMs) == stream.entries.end())
            fresh.push_back({name.startMs, unknownBytes, lengthMs, false});
    }
    fresh.insert(fresh.end(), stream.entries.begin(), stream.entries.end());
    stream.entries = std::move(fresh);
    std::sort(stream.entries.begin(), stream.entries.end(),
              [](const Entry &one, const Entry &other) { return one.startMs < other.startMs; });
}

void Catalogue::grow(const StreamId &id, std::int64_t startMs, std::int64_t lengthMs,
                     std::int64_t size)
{
    const Lock lock(mutex);
    Stream &stream = streams[id];
    const Entry entry{startMs, size, static_cast<std::uint32_t>(lengthMs), true};
    const auto known = stream.find(startMs, true, 0);
    if (known == stream.entries.end()) {
        stream.insert(entry);
        bytes += size;
    } else {
        bytes += size - known->bytes;
        *known = entry;
    }
    stream.longestMs = std::max(stream.longestMs, lengthMs);
}

void Catalogue::finish(const StreamId &id, const SegmentName &name, std::int64_t size)
{
    const Lock lock(mutex);
    Stream &stream = streams[id];
    const auto lengthMs = static_cast<std::uint32_t>(name.lengthMs.value_or(0));
    erase(stream, stream.find(name.startMs, true, 0));
    // Whoever lists the folder may have seen it with its last name already.
    erase(stream, stream.find(name.startMs, false, lengthMs));
    stream.insert({name.startMs, size, lengthMs, false});
    bytes += size;
}

void Catalogue::forgetFinished()
{
    const Lock lock(mutex);
    for (auto &[id, stream] : streams) {
        auto &entries = stream.entries;
        const auto finished = std::stable_partition(
            entries.begin(), entries.end(), [](const Entry &entry) { return entry.isGrowing; });
        for (auto entry = finished; entry != entries.end(); ++entry)
            bytes -= std::max<std::int64_t>(entry->bytes, 0);
        entries.erase(finished, entries.end());
    }
}

void Catalogue::erase(Stream &stream, std::vector<Entry>::iterator entry)
{
    if (entry == stream.entries.end())
        return;
    bytes -= std::max<std::int64_t>(entry->bytes, 0);
    stream.entries.erase(entry);
}

void Catalogue::abandon(const StreamId &id, std::int64_t startMs)
{
    const Lock lock(mutex);
    Stream &stream = streams[id];
    erase(stream, stream.find(startMs, true, 0));
}

void Catalogue::remove(const StreamId &id, const SegmentName &name)
{
    const Lock lock(mutex);
    Stream &stream = streams[id];
    erase(stream,
          stream.find(name.startMs, false, static_cast<std::uint32_t>(name.lengthMs.value_or(0))));
}

void Catalogue::setBytes(const StreamId &id, const SegmentName &name, std::int64_t size)
{
    const Lock lock(mutex);
    Stream &stream = streams[id];
    const auto entry =
        stream.find(name.startMs, false, static_cast<std::uint32_t>(name.lengthMs.value_or(0)));
    if (entry == stream.entries.end())
        return;
    bytes += size - std::max<std::int64_t>(entry->bytes, 0);
    entry->bytes = size;
}

std::vector<Record> Catalogue::recordsOf(const Stream &stream, std::int64_t fromMs,
                                         std::int64_t toMs) const
{
    std::vector<Record> found;
    for (auto entry = stream.firstEndingAfter(fromMs);
         entry != stream.entries.end() && entry->startMs < toMs; ++entry) {
        if (entry->endMs() <= fromMs)
            continue;
        if (!found.empty() && entry->startMs <= found.back().endMs + gapMs)
            found.back().endMs = std::max(found.back().endMs, entry->endMs());
        else
            found.push_back({entry->startMs, entry->endMs()});
        found.back().isGrowing |= entry->isGrowing;
    }
    return found;
}

std::vector<Record> Catalogue::records(const StreamId &id, std::int64_t fromMs,
                                       std::int64_t toMs) const
{
    const Lock lock(mutex);
    const auto stream = streams.find(id);
    return stream == streams.end() ? std::vector<Record>()
                                   : recordsOf(stream->second, fromMs, toMs);
}

std::vector<int> Catalogue::recordsBetween(const StreamId &id,
                                           const std::vector<std::int64_t> &boundaries) const
{
    const Lock lock(mutex);
    const auto stream = streams.find(id);
    std::vector<int> counts;
    for (std::size_t i = 1; i < boundaries.size(); ++i) {
        counts.push_back(
            stream == streams.end()
                ? 0
                : static_cast<int>(
                      recordsOf(stream->second, boundaries[i - 1], boundaries[i]).size()));
    }
    return counts;
}

std::optional<Catalogue::Segment> Catalogue::segmentFrom(const StreamId &id,
                                                         std::int64_t momentMs) const
{
    const Lock lock(mutex);
    const auto stream = streams.find(id);
    if (stream == streams.end())
        return {};
    const auto &entries = stream->second.entries;
    auto best = stream->second.firstEndingAfter(momentMs);
    // Where segments overlap, the one that was begun last knows best.
    for (auto entry = best; entry != entries.end() && entry->startMs <= momentMs; ++entry) {
        if (entry->endMs() > momentMs)
            best = entry;
    }
    if (best == entries.end())
        return {};
    return best->segment();
}

std::optional<Catalogue::Segment> Catalogue::segmentAt(const StreamId &id,
                                                       std::int64_t startMs) const
{
    const Lock lock(mutex);
    const auto stream = streams.find(id);
    if (stream == streams.end())
        return {};
    const auto entry = stream->second.firstFrom(startMs);
    if (entry == stream->second.entries.end() || entry->startMs != startMs)
        return {};
    return entry->segment();
}

bool Catalogue::holdsAny(std::int64_t fromMs, std::int64_t toMs) const
{
    const Lock lock(mutex);
    return std::any_of(streams.begin(), streams.end(), [fromMs, toMs](const auto &one) {
        const auto entry = one.second.firstEndingAfter(fromMs);
        return entry != one.second.entries.end() && entry->startMs < toMs;
    });
}

std::optional<std::pair<StreamId, Catalogue::Segment>>
Catalogue::oldest(const std::vector<Place> &but) const
{
    const Lock lock(mutex);
    std::optional<std::pair<StreamId, Segment>> found;
    for (const auto &[id, stream] : streams) {
        const auto isIn = [&id = id](const Entry &entry, const std::vector<Place> &places) {
            return std::any_of(places.begin(), places.end(), [&](const Place &place) {
                return place.first == id && place.second.startMs == entry.startMs;
            });
        };
        const auto first =
            std::find_if(stream.entries.begin(), stream.entries.end(),
                         [&](const Entry &entry) { return !entry.isGrowing && !isIn(entry, but); });
        if (first != stream.entries.end() && (!found || first->endMs() < found->second.endMs))
            found = {id, first->segment()};
    }
    return found;
}

std::vector<Catalogue::Place> Catalogue::unmeasured() const
{
    const Lock lock(mutex);
    std::vector<Place> found;
    for (const auto &[id, stream] : streams) {
        for (const Entry &entry : stream.entries) {
            if (entry.bytes == unknownBytes)
                found.emplace_back(id, entry.segment().name);
        }
    }
    return found;
}

std::int64_t Catalogue::knownBytes() const
{
    const Lock lock(mutex);
    return bytes;
}

std::size_t Catalogue::size() const
{
    const Lock lock(mutex);
    std::size_t count = 0;
    for (const auto &[id, stream] : streams)
        count += stream.entries.size();
    return count;
}

} // namespace ZorvaneServer
