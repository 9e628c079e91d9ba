// SPDX-License-Identifier: MIT
#pragma once

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

    /// True when the span came to its end, false when the receiver is gone.
    bool run();

private:
    enum class Step { Send, Skip, End };

    Step beforePicture();
    Step awaitTime();
    Step findRecord(std::int64_t momentMs);

    const ArchiveCatalogue &catalogue;
    const CameraId camera;
    const ArchiveSpan span;
    Record current;
    ArchiveSource &source;
    Watch &watch;
    RateLimit limited;
    const std::int64_t zeroMs;
    FlvStream stream;
    Pace pace;
    MediaPacket packet;
};

} // namespace ZorvaneService
