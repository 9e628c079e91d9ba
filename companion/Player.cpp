// SPDX-License-Identifier: MIT
#include "companion/Player.h"

#include <algorithm>
#include <thread>
#include <utility>

namespace ZorvaneClient {
namespace Companion {

namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr size_t maxVideoBytes = 16 * 1024 * 1024;
constexpr size_t maxAudioBytes = 1024 * 1024;
/// How far a stream that isn't live is read ahead.
constexpr auto readAhead = milliseconds(2000);
constexpr auto maxLiveBacklog = milliseconds(20'000);
constexpr auto liveSoundDelay = milliseconds(100);

/// A live picture this far behind the newest packet makes the clock jump.
constexpr auto maxLiveLag = milliseconds(400);
constexpr auto liveLagAfterJump = milliseconds(120);
/// With more than this waiting, decoding goes on at a later key frame.
constexpr auto keyJumpLag = milliseconds(1000);
constexpr auto anyReach = milliseconds(1'000'000);

/// A picture this late gives way to the next one, if that is there already.
constexpr auto skipLateness = milliseconds(40);
constexpr auto hurryLateness = milliseconds(200);
constexpr auto maxLateness = milliseconds(2000);
/// But something is to be seen at least this often.
constexpr auto maxUnshown = milliseconds(250);
/// Pictures closer together than this can't be seen singly.
constexpr auto minPictureStep = milliseconds(10);
/// A picture farther ahead isn't waited for: its time stamp is a jump.
constexpr auto maxWait = milliseconds(5000);

/// Times go out with frames, and also without when those come slowly.
constexpr auto timeLineInterval = milliseconds(120);
constexpr auto maxTimeLineInterval = milliseconds(200);
/// Without a new picture the time runs on for as long as the last two were apart, within these.
constexpr auto minTimeAhead = milliseconds(250);
constexpr auto maxTimeAhead = milliseconds(1500);
constexpr auto bufferingAfter = milliseconds(2000);
constexpr auto idleInterval = milliseconds(100);

/// Limits for the first picture, for a picture out of packets, and for the next packet.
constexpr auto firstPictureLimit = milliseconds(9000);
constexpr auto decoderLimit = milliseconds(9000);
constexpr auto pictureLimit = seconds(30);

PacketQueue::Limits videoLimits(bool live)
{
    if (live)
        return {maxVideoBytes, maxLiveBacklog, PacketQueue::Overflow::DropToKey};
    return {maxVideoBytes, readAhead, PacketQueue::Overflow::Wait};
}

} // namespace

Player::Player(const Arguments &streamArguments, const Controls &sharedControls,
               const FrameFile &sharedFrameFile, LineOutput &lineOutput)
    : arguments(streamArguments)
    , controls(sharedControls)
    , frameFile(sharedFrameFile)
    , output(lineOutput)
    , videoPackets(videoLimits(arguments.live))
    , audioPackets({maxAudioBytes, maxLiveBacklog, PacketQueue::Overflow::DropToKey})
    , reader(arguments, controls, videoPackets, audioPackets)
    , audio(controls, audioPackets, clock, track,
            arguments.live ? microseconds(liveSoundDelay) : microseconds(0))
{
}

int Player::run()
{
    output.state(StreamState::Opening);
    flush();
    startThreads();
    while (!clientGone) {
        controls.waitWhilePaused();
        QueuedPacket item;
        ranDry = ranDry || videoPackets.isEmpty();
        switch (videoPackets.pop(item, idlePatience())) {
        case PacketQueue::Taken::Packet:
            takePacket(item);
            break;
        case PacketQueue::Taken::Nothing:
            whileIdle();
            break;
        case PacketQueue::Taken::End:
            decoder.sendEnd();
            showDecoded();
            return finish(videoPackets.end() == PacketQueue::End::Finished &&
                          size != PictureSize());
        }
        if (isGivenUp())
            return finish(false);
    }
    return 0;
}

void Player::startThreads()
{
    std::thread([this] { reader.run(); }).detach();
    std::thread([this] { audio.run(); }).detach();
}

void Player::enter(Phase newPhase)
{
    if (newPhase == phase)
        return;
    phase = newPhase;
    output.state(phase == Phase::Playing ? StreamState::Playing : StreamState::Buffering);
}

void Player::takePacket(const QueuedPacket &item)
{
    if (phase == Phase::Opening) {
        enter(Phase::Buffering);
        flush();
    }
    if (!packetSince)
        packetSince = controls.now();
    stampPosition(item);
    decoder.send(item);
    showDecoded();
}

/// Pictures come out of the decoder with the position as their time.
void Player::stampPosition(const QueuedPacket &item)
{
    const auto now = std::chrono::steady_clock::now();
    const auto passed = std::chrono::floor<milliseconds>(now - lastPacket.value_or(now));
    lastPacket = now;
    AVPacket &packet = *item.packet;
    track.advance(packet.dts, packet.pts, passed + item.droppedBefore);
    packet.pts += track.offset();
}

void Player::showDecoded()
{
    while (const AVFrame *picture = clientGone ? nullptr : decoder.receive()) {
        packetSince.reset();
        lastDecoded = controls.now();
        present(*picture);
    }
}

void Player::present(const AVFrame &picture)
{
    const Time position =
        picture.pts == AV_NOPTS_VALUE ? lastShownPosition : Time(milliseconds(picture.pts));
    keepClock(position);
    decoder.setHurry(controls.now() - clock.due(position) > hurryLateness);
    if (isSkipped(position)) {
        // The client's clock goes on even where its pictures don't.
        tellTime(position, maxTimeLineInterval);
        flush();
        return;
    }
    waitUntilDue(position);
    controls.waitWhilePaused();
    show(picture, position);
}

/// Sets the clock anew where the stream itself is late or jumps; a decoder that is late gets
/// fewer pictures to show instead.
void Player::keepClock(Time position)
{
    const Time now = controls.now();
    const Time late = now - clock.due(position);
    const bool waitedForStream = ranDry || videoPackets.isEmpty();
    const bool streamIsLate = late > Time(0) && (waitedForStream || late > maxLateness);
    if (!clock.isRunning() || streamIsLate || -late > maxWait)
        clock.anchor(position, now);
    ranDry = false;
    if (arguments.live)
        catchUpLive(position);
    else if (late > keyJumpLag)
        videoPackets.dropToKey(std::chrono::duration_cast<milliseconds>(late));
}

void Player::catchUpLive(Time position)
{
    const milliseconds backlog = videoPackets.span();
    const Time now = controls.now();
    const Time newest = position + backlog;
    if (newest - clock.position(now) > maxLiveLag)
        clock.anchor(newest - liveLagAfterJump, now);
    if (backlog > keyJumpLag)
        videoPackets.dropToKey(anyReach);
}

bool Player::isSkipped(Time position) const
{
    if (size == PictureSize() || videoPackets.isEmpty())
        return false;
    const Time now = controls.now();
    const bool late = now - clock.due(position) > skipLateness;
    const bool tooClose = position - lastShownPosition < minPictureStep;
    return (late || tooClose) && now - lastShown < maxUnshown;
}

void Player::waitUntilDue(Time position)
{
    for (;;) {
        const Time due = clock.due(position);
        if (controls.now() >= due)
            return;
        const Time nextTimeLine =
            std::max<Time>(lastTold + maxTimeLineInterval, controls.now() + minPictureStep);
        controls.waitUntil(std::min(due, nextTimeLine));
        if (controls.now() < due) {
            tellTime(clock.position(controls.now()), maxTimeLineInterval);
            flush();
        }
        if (arguments.live)
            catchUpLive(position);
    }
}

void Player::show(const AVFrame &picture, Time position)
{
    if (!converter.convert(picture, frameFile.pixels())) {
        packetSince = packetSince.value_or(lastShown);
        return;
    }
    const PictureSize shownSize = fittedSize({picture.width, picture.height});
    if (shownSize != size) {
        size = shownSize;
        output.size(size.width, size.height);
    }
    enter(Phase::Playing);
    lastShown = controls.now();
    timeAhead = std::clamp<Time>(position - lastShownPosition, minTimeAhead, maxTimeAhead);
    lastShownPosition = position;
    tellTime(position, timeLineInterval);
    output.frame();
    flush();
}

void Player::whileIdle()
{
    if (phase != Phase::Playing)
        return;
    const Time now = controls.now();
    if (now - lastShown > bufferingAfter)
        enter(Phase::Buffering);
    else
        tellTime(std::min(clock.position(now), lastShownPosition + timeAhead), maxTimeLineInterval);
    flush();
}

void Player::tellTime(Time position, milliseconds interval)
{
    // A live stream begins with what the server has kept: the client's clock, which counts from
    // the start of this process, must not run ahead of the wall's.
    if (arguments.live)
        position = std::min<Time>(
            position, std::chrono::duration_cast<Time>(std::chrono::steady_clock::now() - started));
    const Time now = controls.now();
    const auto newPosition = std::chrono::floor<milliseconds>(position);
    if (toldPosition && (newPosition <= *toldPosition || now - lastTold < interval))
        return;
    toldPosition = newPosition;
    lastTold = now;
    output.time(newPosition.count());
}

milliseconds Player::idlePatience() const
{
    if (phase != Phase::Playing)
        return idleInterval;
    const auto left = lastTold + maxTimeLineInterval - controls.now();
    return std::clamp(std::chrono::ceil<milliseconds>(left), minPictureStep, maxTimeLineInterval);
}

bool Player::isGivenUp() const
{
    const Time now = controls.now();
    if (decoder.isUnusable())
        return true;
    if (size == PictureSize())
        return now > firstPictureLimit;
    return (packetSince && now - *packetSince > decoderLimit) || now - lastDecoded > pictureLimit;
}

bool Player::flush()
{
    if (!output.flush())
        clientGone = true;
    return !clientGone;
}

int Player::finish(bool ended)
{
    if (clientGone)
        return 0;
    if (ended) {
        output.state(StreamState::Ended);
        output.flushPatiently();
    }
    output.state(StreamState::Error);
    output.flushPatiently();
    return ended ? 0 : 1;
}

} // namespace Companion
} // namespace ZorvaneClient
