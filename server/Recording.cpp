// SPDX-License-Identifier: MIT
#include "server/Recording.h"

#include <cerrno>

#include "server/UtcTime.h"

namespace ZorvaneServer {

Recording::Recording(StreamId streamId, std::function<SegmentRule()> ruleNow,
                     const ArchiveFolder &archive, Catalogue &known, SegmentFinisher &end)
    : stream(std::move(streamId))
    , nextRule(std::move(ruleNow))
    , folder(archive)
    , catalogue(known)
    , finisher(end)
{
}

bool Recording::endsBefore(const MediaPacket &picture) const
{
    const std::int64_t endMs = segment->startMs() + segment->lengthMs();
    return picture.run != run || *picture.format != *segment->format() ||
           picture.momentMs - endMs > Catalogue::gapMs || picture.momentMs < segment->startMs() ||
           rule.isDue(segment->startMs(), std::int64_t(segment->bytes()), picture.momentMs);
}

Recording::Outcome Recording::begin(const MediaPacket &packet)
{
    segment = folder.create(stream, packet.format, packet.momentMs);
    if (!segment)
        return errno == ENOSPC || errno == EDQUOT ? Outcome::NoRoom : Outcome::Failed;
    rule = nextRule();
    run = packet.run;
    fresh += std::int64_t(segment->bytes());
    finisher.opened(segment);
    return Outcome::Written;
}

Recording::Outcome Recording::write(const MediaPacket &packet)
{
    if (segment && packet.isKeyPicture() && endsBefore(packet))
        close();
    if (!segment) {
        if (!packet.isKeyPicture())
            return Outcome::Written;
        if (const Outcome outcome = begin(packet); outcome != Outcome::Written)
            return outcome;
    }
    const std::uint64_t before = segment->bytes();
    const Outcome outcome = segment->append(packet);
    if (outcome != Outcome::Written) {
        // What can't be written to any more is finished as far as it got.
        if (outcome == Outcome::Failed)
            close();
        return outcome;
    }
    fresh += std::int64_t(segment->bytes() - before);
    if (packet.isKeyPicture() || segment->lengthMs() - toldMs >= secondMs) {
        toldMs = segment->lengthMs();
        catalogue.grow(stream, segment->startMs(), toldMs, std::int64_t(segment->bytes()));
    }
    return outcome;
}

void Recording::close()
{
    if (segment)
        finisher.finish(stream, std::move(segment));
    segment.reset();
    toldMs = 0;
}

} // namespace ZorvaneServer
