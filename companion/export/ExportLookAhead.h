// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <deque>
#include <vector>

#include "companion/AvHandles.h"
#include "companion/export/ExportTimeline.h"

namespace ZorvaneClient {
namespace Companion {

/// A packet on its way into the file.
struct ExportSample {
    ExportTimeline::Kind kind;
    PacketHandle packet; ///< its times are those of the file, in milliseconds
};

/// The beginning of a stream, held until enough is known to begin the file: what its head says
/// can't be changed any more.
class ExportLookAhead
{
public:
    void add(ExportSample sample);
    /// `length` is that of the video so far.
    bool isEnough(std::chrono::milliseconds length) const;

    std::vector<const AVPacket *> packets(ExportTimeline::Kind kind) const;
    /// The time of one picture, or a part of it, in seconds. There must be a picture.
    AVRational pictureSlot() const;
    /// Hands all out, in order.
    std::deque<ExportSample> take();

private:
    std::deque<ExportSample> samples;
    size_t bytes = 0;
};

} // namespace Companion
} // namespace ZorvaneClient
