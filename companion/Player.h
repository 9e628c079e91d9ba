// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <optional>

#include "companion/Arguments.h"
#include "companion/AudioPlayer.h"
#include "companion/Controls.h"
#include "companion/FrameFile.h"
#include "companion/LineOutput.h"
#include "companion/PacingClock.h"
#include "companion/PacketQueue.h"
#include "companion/PictureConverter.h"
#include "companion/PictureDecoder.h"
#include "companion/PositionTrack.h"
#include "companion/StreamReader.h"

namespace ZorvaneClient {
namespace Companion {

/// Plays one stream into the frame file and tells the client about it. A live stream is kept
/// close to its newest picture, any other one is played in its own time.
///
/// Three threads: the caller's decodes and shows pictures and is the only one that writes
/// lines; one reads the network; one plays the sound. The last two may hang in a system call,
/// so the process is meant to end without them.
class Player
{
public:
    Player(const Arguments &arguments, const Controls &controls, const FrameFile &frameFile,
           LineOutput &output);

    /// Returns the program's exit code at the end of the stream: 0, or 1 after an error.
    int run();

private:
    using Time = Controls::Time;

    enum class Phase { Opening, Buffering, Playing };

    void startThreads();
    void enter(Phase newPhase);

    void takePacket(const QueuedPacket &item);
    void stampPosition(const QueuedPacket &item);
    void showDecoded();
    void present(const AVFrame &picture);
    void keepClock(Time position);
    void catchUpLive(Time position);
    bool isSkipped(Time position) const;
    void waitUntilDue(Time position);
    void show(const AVFrame &picture, Time position);

    void whileIdle();
    void tellTime(Time position, std::chrono::milliseconds interval);
    std::chrono::milliseconds idlePatience() const;
    bool isGivenUp() const;
    bool flush();
    int finish(bool ended);

    const Arguments &arguments;
    const Controls &controls;
    const FrameFile &frameFile;
    LineOutput &output;

    PacketQueue videoPackets;
    PacketQueue audioPackets;
    StreamReader reader;
    PictureDecoder decoder;
    PictureConverter converter;
    PacingClock clock;
    PositionTrack track;
    AudioPlayer audio;

    const std::chrono::steady_clock::time_point started = std::chrono::steady_clock::now();
    Phase phase = Phase::Opening;
    bool clientGone = false;
    bool ranDry = false;
    PictureSize size;
    Time lastDecoded{0};
    std::optional<Time> packetSince;
    std::optional<std::chrono::steady_clock::time_point> lastPacket;
    Time lastShownPosition{0};
    Time timeAhead{0};
    Time lastShown{0};
    std::optional<std::chrono::milliseconds> toldPosition;
    Time lastTold{0};
};

} // namespace Companion
} // namespace ZorvaneClient
