// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <functional>
#include <optional>
#include <string>

#include "server/AvHandles.h"
#include "server/CameraSource.h"
#include "server/DecodingOrder.h"

namespace ZorvaneServer {

/// A connection to a camera, or a file that stands for one: that comes in its own time, and
/// begins anew at its end.
class CaptureInput
{
public:
    /// `isOver` is asked again and again while anything is waited for.
    CaptureInput(CameraSource source, std::function<bool()> isOver);
    CaptureInput(const CaptureInput &) = delete;
    CaptureInput &operator=(const CaptureInput &) = delete;

    /// An empty text, or why not; fit for people, not yet redacted.
    std::string open();
    /// The next packet of any stream; null when there is no more, with the reason in `failure`.
    AVPacket *read();

    /// The streams that are used; null when there is none.
    const AVStream *video() const { return videoStream; }
    const AVStream *sound() const { return soundStream; }
    const std::string &failure() const { return reason; }

    /// When the packet that was read is decoded, by the camera.
    std::chrono::microseconds stamp() const { return decoded; }
    /// How much later it is shown.
    std::chrono::microseconds delay() const { return shownLater; }

private:
    static int askOver(void *input);
    void chooseStreams();
    bool readLooped();
    void readTimes();
    std::chrono::microseconds timeOf(std::int64_t units) const;
    void waitForTime();

    const CameraSource source;
    const std::function<bool()> isOver;
    FormatHandle format;
    PacketHandle packet;
    std::chrono::microseconds decoded{0};
    std::chrono::microseconds shownLater{0};
    DecodingOrder order;
    const AVStream *videoStream = nullptr;
    const AVStream *soundStream = nullptr;
    std::string reason;

    // Of a file.
    std::chrono::microseconds loopOffset{0};
    std::chrono::microseconds latestEnd{0}; ///< of the pictures
    std::optional<std::chrono::microseconds> firstStamp;
    std::chrono::microseconds begun{0}; ///< when the first stamp was due
};

} // namespace ZorvaneServer
