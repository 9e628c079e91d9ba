// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>

#include "service/Access.h"
#include "service/ArchiveCatalogue.h"
#include "service/Http.h"
#include "service/MediaLibrary.h"
#include "service/RosterSource.h"

namespace ZorvaneService {

/// `/flv/live` and `/flv/archive`: packets of the cameras, copied, in real time.
class FlvService
{
public:
    FlvService(const RosterSource &source, const Access &rules, const ArchiveCatalogue &archive,
               const MediaLibrary &library)
        : roster(source), access(rules), catalogue(archive), media(library)
    {
    }

    HttpReply handle(const HttpRequest &request);

    int openStreams() const { return streams; }

private:
    /// Begins with the newest key frame. Ends when the camera may not be seen any more.
    HttpReply live(const HttpRequest &request);
    /// `startTime` (seconds) and `speed`: plays the record that holds the moment up to its
    /// end, from speed 4 on with key frames only. A record that is still being written is
    /// followed. With `endTime`, at LAN servers alone, both are milliseconds: what is recorded
    /// between them, without the gaps, by `uploadRate` kilobytes a second.
    HttpReply archive(const HttpRequest &request);

    /// True when the stream came to its end, false when the receiver is gone.
    bool sendLive(const HttpRequest &request, const CameraId &camera, BodySink &sink) const;

    const RosterSource &roster;
    const Access &access;
    const ArchiveCatalogue &catalogue;
    const MediaLibrary &media;
    std::atomic<int> streams{0};
};

} // namespace ZorvaneService
