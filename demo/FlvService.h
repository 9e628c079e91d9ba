// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstdint>

#include "demo/Access.h"
#include "demo/ClipStore.h"
#include "demo/RecordPlan.h"
#include "demo/ServiceWords.h"
#include "demo/World.h"
#include "service/ArchiveSpan.h"
#include "service/Http.h"

namespace ZorvaneDemo {

class FlvFeed;

/// `/flv/live` and `/flv/archive`: packets of the cameras' clips, copied, in real time.
class FlvService
{
public:
    FlvService(const World &cameras, const Access &accessRules, const ClipStore &clipStore)
        : world(cameras), access(accessRules), clips(clipStore)
    {
    }

    HttpReply handle(const HttpRequest &request);

    int openStreams() const { return streams; }

private:
    /// Begins with the key frame of the present second and follows the wall clock. Ends when
    /// the camera may not be seen any more.
    HttpReply live(const HttpRequest &request);
    /// `startTime` (seconds) and `speed`: plays the record that holds the moment up to its
    /// end, from speed 4 on with key frames only. A record that is still being written is
    /// followed. With `endTime`, at LAN servers alone, both are milliseconds: what is recorded
    /// between them, without the gaps, by `uploadRate` kilobytes a second.
    HttpReply archive(const HttpRequest &request);

    /// True when the stream came to its end, false when the receiver is gone.
    bool sendLive(const HttpRequest &request, const Camera &camera, BodySink &sink) const;
    bool sendArchive(const HttpRequest &request, const Camera &camera, const ArchiveSpan &span,
                     Record record, BodySink &sink) const;
    /// Finds what to go on with at the feed's moment; false when there is nothing more.
    bool findRecord(const HttpRequest &request, const ArchiveSpan &span, Record *record,
                    FlvFeed *feed) const;

    const World &world;
    const Access &access;
    const ClipStore &clips;
    std::atomic<int> streams{0};
};

} // namespace ZorvaneDemo
