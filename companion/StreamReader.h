// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <map>
#include <memory>

#include "companion/Controls.h"
#include "companion/PacketQueue.h"
#include "companion/PlayerArguments.h"
#include "companion/StallWatch.h"

namespace ZorvaneClient {
namespace Companion {

/// Reads the stream from the network and sorts its packets into the queues. Reads nothing
/// while the client has paused, and gives up when no data comes for `stallLimit`.
class StreamReader
{
public:
    static constexpr auto stallLimit = std::chrono::seconds(10);

    StreamReader(const PlayerArguments &arguments, const Controls &controls, PacketQueue &video,
                 PacketQueue &audio);

    /// Returns at the end of the stream; the queues then are finished.
    void run();

private:
    static int interruptWhenStalled(void *reader);

    bool open();
    PacketQueue::End readToEnd();
    void route(PacketHandle packet);
    std::shared_ptr<const StreamFormat> formatOf(const AVStream &stream);
    void restartStallWatch();
    bool isStalled();

    const PlayerArguments &arguments;
    const Controls &controls;
    PacketQueue &video;
    PacketQueue &audio;
    FormatHandle input;
    std::map<AVMediaType, std::shared_ptr<const StreamFormat>> formats;
    StallWatch stallWatch{stallLimit};
};

} // namespace Companion
} // namespace ZorvaneClient
