// SPDX-License-Identifier: MIT
#include "service/ArchiveSender.h"

#include <algorithm>

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
        const auto outcome = source.read(&packet);
        auto step = Step::Send;
        if (outcome == MediaSource::Outcome::End)
            step = findRecord(current.endMs) == Step::Skip ? Step::Skip : Step::End;
        else if (outcome == MediaSource::Outcome::NotYet)
            step = watch.isDue() && !watch.isAllowed() ? Step::End : Step::Skip;
        else if (packet.isPicture)
            step = beforePicture();
        if (step == Step::End)
            return true;
        if (!(step == Step::Send ? stream.send(packet) : limited.isOpen()))
            return false;
    }
}

/// Waits until the picture is due, and finds the record that it belongs to.
ArchiveSender::Step ArchiveSender::beforePicture()
{
    if (packet.momentMs >= span.endMs)
        return Step::End;
    auto step = span.isExport() ? Step::Send : awaitTime();
    while (step == Step::Send && (packet.momentMs >= current.endMs || watch.isDue()))
        step = watch.isAllowed() ? findRecord(packet.momentMs) : Step::End;
    return step;
}

/// `Send` once the picture is due, something else when nobody is to get it any more.
ArchiveSender::Step ArchiveSender::awaitTime()
{
    const std::int64_t dueMs = pace.dueMs(packet.momentMs);
    for (;;) {
        sleepUntil(std::min(dueMs, nowMs() + longestSleepMs));
        if (nowMs() >= dueMs)
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
    if (!found)
        return Step::End;
    if (found->startMs < current.endMs) {
        current = *found;
        return Step::Send;
    }
    const auto first = span.isExport() && found->startMs < span.endMs
                           ? source.seek(*found, momentMs)
                           : std::nullopt;
    if (!first)
        return Step::End;
    stream.join(current.endMs, *first);
    current = *found;
    return Step::Skip;
}

} // namespace ZorvaneService
