// SPDX-License-Identifier: MIT
#pragma once

#include <vector>

#include "service/ArchiveCatalogue.h"
#include "service/ArchiveSpan.h"
#include "service/FlvStream.h"
#include "service/MediaSource.h"
#include "service/Pace.h"
#include "service/RateLimit.h"
#include "service/Watch.h"

namespace ZorvaneService {

/// Plays or exports a span of a camera's archive for one receiver.
class ArchiveSender
{
public:
    /// Begins in `record`; `first` is the moment of the source's first picture there.
    ArchiveSender(const ArchiveCatalogue &archive, const CameraId &whose, const ArchiveSpan &wanted,
                  const Record &record, ArchiveSource &media, std::int64_t first, Watch &eye,
                  BodySink &sink);

    /// True when the span came to its end, false when the receiver is gone or an export has
    /// broken off.
    bool run();

private:
    enum class Step { Send, Skip, End, Break };

    Step afterOutcome(MediaSource::Outcome outcome);
    Step beforePicture();
    Step refused() const { return span.isExport() ? Step::Break : Step::End; }
    bool send();
    Step awaitTime();
    Step findRecord(std::int64_t momentMs);
    bool isPassedOver(const Record *next) const;

    const ArchiveCatalogue &catalogue;
    const CameraId camera;
    const ArchiveSpan span;
    Record current;
    const std::vector<Record> promised; ///< to an export, as they were when it began
    ArchiveSource &source;
    Watch &watch;
    RateLimit limited;
    const std::int64_t zeroMs;
    FlvStream stream;
    Pace pace;
    MediaPacket packet;
    std::vector<MediaPacket> beyond; ///< pictures that are shown behind the span
};

} // namespace ZorvaneService
