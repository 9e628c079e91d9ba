// SPDX-License-Identifier: MIT
#include "service/ArchiveSender.h"

#include <algorithm>
#include <chrono>
#include <thread>

namespace ZorvaneService {

namespace {

// A clock that is set back makes a wait long: so often it is looked whether anybody still waits.
constexpr std::int64_t longestSleepMs = 250;

} // namespace

ArchiveSender::ArchiveSender(const ArchiveCatalogue &archive, const CameraId &whose,
                             const ArchiveSpan &wanted, const Record &record, ArchiveSource &media,
                             std::int64_t first, Watch &eye, BodySink &sink)
    : catalogue(archive)
    , camera(whose)
    , span(wanted)
    , current(record)
    , promised(span.isExport() ? catalogue.records(camera, span.startMs, span.endMs)
                               : std::vector<Record>())
    , source(media)
    , watch(eye)
    , limited(sink, span.bytesPerMs)
    // A player is to show the moment asked for at once, a file keeps every picture's time.
    , zeroMs(span.isExport() ? first : std::max(first, span.startMs))
    , stream(limited, span.speed, zeroMs)
    , pace(zeroMs, span.speed)
{
}

bool ArchiveSender::run()
{
    for (;;) {
        const Step step = afterOutcome(source.read(&packet));
        if (step == Step::End)
            return true;
        if (step == Step::Break)
            limited.breakOff();
        if (step == Step::Break || !(step == Step::Send ? send() : limited.isOpen()))
            return false;
    }
}

ArchiveSender::Step ArchiveSender::afterOutcome(MediaSource::Outcome outcome)
{
    switch (outcome) {
    case MediaSource::Outcome::Packet:
        return packet.isPicture ? beforePicture() : Step::Send;
    case MediaSource::Outcome::NotYet:
        return watch.isDue() && !watch.isAllowed() ? refused() : Step::Skip;
    case MediaSource::Outcome::Lost:
        // Who watches goes on behind it, but a file must not lack it unnoticed.
        return span.isExport() && packet.momentMs < span.endMs ? Step::Break : Step::Skip;
    case MediaSource::Outcome::End:
        break;
    }
    const Step step = findRecord(current.endMs);
    return step == Step::Send ? Step::End : step;
}

/// Waits until the picture is due, and finds the record that it belongs to.
ArchiveSender::Step ArchiveSender::beforePicture()
{
    if (packet.momentMs >= span.endMs) {
        // Pictures of the span may come behind it and need it, but none behind the next one that
        // is shown still later.
        if (!beyond.empty() && packet.momentMs > beyond.front().momentMs)
            return Step::End;
        beyond.push_back(std::move(packet));
        return Step::Skip;
    }
    auto step = span.isExport() ? Step::Send : awaitTime();
    while (step == Step::Send && (packet.momentMs >= current.endMs || watch.isDue())) {
        const bool isWithin = packet.momentMs < current.endMs;
        step = watch.isAllowed() ? findRecord(packet.momentMs) : refused();
        // The record that is being read has been removed.
        if (isWithin && step != Step::Send)
            step = refused();
    }
    return step;
}

bool ArchiveSender::send()
{
    if (packet.isPicture) {
        for (const MediaPacket &picture : beyond) {
            if (!stream.send(picture))
                return false;
        }
        beyond.clear();
    }
    return stream.send(packet);
}

/// `Send` once the picture is due, something else when nobody is to get it any more.
ArchiveSender::Step ArchiveSender::awaitTime()
{
    for (;;) {
        const std::int64_t leftMs = pace.leftMs(packet.momentMs);
        std::this_thread::sleep_for(std::chrono::milliseconds(std::min(leftMs, longestSleepMs)));
        if (leftMs <= longestSleepMs)
            return Step::Send;
        if (!watch.isAllowed())
            return Step::End;
        if (!limited.isOpen())
            return Step::Skip;
    }
}

/// Looks what is recorded at `momentMs`, or for an export from there on. `Send`: still the record
/// at hand, which may have grown.
ArchiveSender::Step ArchiveSender::findRecord(std::int64_t momentMs)
{
    const auto found = span.isExport() ? catalogue.recordFrom(camera, momentMs)
                                       : catalogue.recordAt(camera, momentMs);
    if (isPassedOver(found ? &*found : nullptr))
        return Step::Break;
    if (!found)
        return Step::End;
    if (found->startMs < current.endMs) {
        current = *found;
        return Step::Send;
    }
    if (!span.isExport() || found->startMs >= span.endMs)
        return Step::End;
    const auto first = source.seek(*found, momentMs);
    if (!first)
        return Step::Break;
    stream.join(current.endMs, *first);
    current = *found;
    return Step::Skip;
}

/// Whether a record of an export, or its beginning, was removed before it was reached.
bool ArchiveSender::isPassedOver(const Record *next) const
{
    return std::any_of(promised.begin(), promised.end(), [&](const Record &one) {
        return one.startMs >= current.endMs && one.startMs < span.endMs &&
               (!next || one.startMs < next->startMs);
    });
}

} // namespace ZorvaneService
