// SPDX-License-Identifier: MIT
#pragma once

#include "companion/AudioPlayer.h"
#include "companion/Controls.h"
#include "companion/FrameFile.h"
#include "companion/Pacing.h"
#include "companion/PacketQueue.h"
#include "companion/PictureConverter.h"
#include "companion/PictureDecoder.h"
#include "companion/PicturePatience.h"
#include "companion/PlayerArguments.h"
#include "companion/PlayerOutput.h"
#include "companion/PositionTrack.h"
#include "companion/StreamReader.h"
#include "companion/TimeLines.h"

namespace ZorvaneClient {
namespace Companion {

/// Plays one stream into the frame file and tells the client about it. `Pacing` decides about
/// each picture, `TimeLines` about what time the client is told, `PicturePatience` when to give
/// up; here it is done.
///
/// Three threads: the caller's decodes and shows pictures and is the only one that writes
/// lines; one reads the network; one plays the sound. The last two may hang in a system call,
/// so the process is meant to end without them.
class Player
{
public:
    Player(const PlayerArguments &arguments, const Controls &controls, const FrameFile &frameFile,
           PlayerOutput &output);

    /// Returns at the end of the stream or when the client is gone; false after an error.
    bool run();

private:
    using Time = Controls::Time;

    enum class Phase { Opening, Buffering, Playing };

    void startThreads();
    void enter(Phase newPhase);

    void takePacket(const QueuedPacket &item);
    void showDecoded();
    void present(const AVFrame &picture);
    Pacing::Backlog backlog() const;
    void jumpAsTold(const Pacing::Answer &answer);
    void show(const AVFrame &picture, Time position);

    void whileIdle();
    void tellTime(Time position, TimeLines::Beside beside);
    std::chrono::milliseconds idlePatience() const;
    bool isGivenUp() const;
    void flush();
    bool finish(bool ended);

    const PlayerArguments &arguments;
    const Controls &controls;
    const FrameFile &frameFile;
    PlayerOutput &output;

    PacketQueue videoPackets;
    PacketQueue audioPackets;
    StreamReader reader;
    PictureDecoder decoder;
    PictureConverter converter;
    Pacing pacing;
    TimeLines timeLines;
    PicturePatience patience;
    PositionTrack track;
    AudioPlayer audio;

    Phase phase = Phase::Opening;
    bool clientGone = false;
    bool ranDry = false; ///< since the last picture
    PictureSize size;
};

} // namespace Companion
} // namespace ZorvaneClient
