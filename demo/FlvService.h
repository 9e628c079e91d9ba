// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstdint>

#include "demo/Access.h"
#include "demo/ClipStore.h"
#include "demo/Http.h"
#include "demo/World.h"

namespace ZorvaneDemo {

/// `/flv/live` and `/flv/archive`: packets of the cameras' clips, copied, in real time.
class FlvService
{
public:
    FlvService(const World &cameras, const Access &accessRules, const ClipStore &clipStore)
        : world(cameras), access(accessRules), clips(clipStore)
    {
    }

    /// Begins with the key frame of the present second and follows the wall clock. Ends when
    /// the camera may not be seen any more.
    HttpReply live(const HttpRequest &request);
    /// `startTime` (seconds) and `speed`: plays the record that holds the moment up to its
    /// end; from speed 4 on with key frames only. With `endTime` both are milliseconds and
    /// the span comes as fast as it is taken.
    HttpReply archive(const HttpRequest &request);

    int openStreams() const { return streams; }

private:
    struct Span;
    class Feed;

    // True when the stream came to its end, false when the receiver is gone.
    bool sendLive(const HttpRequest &request, const Camera &camera, BodySink &sink) const;
    bool sendArchive(const HttpRequest &request, const Camera &camera, const Span &span,
                     BodySink &sink) const;

    const World &world;
    const Access &access;
    const ClipStore &clips;
    std::atomic<int> streams{0};
};

} // namespace ZorvaneDemo
