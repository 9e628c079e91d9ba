// SPDX-License-Identifier: MIT
#include "companion/Player.h"

#include <algorithm>
#include <thread>

#include "companion/LastWords.h"

namespace ZorvaneClient {
namespace Companion {

namespace {

using std::chrono::microseconds;
using std::chrono::milliseconds;

constexpr size_t maxVideoBytes = size_t(16) * 1024 * 1024;
constexpr size_t maxAudioBytes = size_t(1024) * 1024;
/// How far a stream that isn't live is read ahead.
constexpr auto readAhead = milliseconds(2000);
constexpr auto maxLiveBacklog = milliseconds(20'000);
constexpr auto liveSoundDelay = milliseconds(100);

constexpr auto bufferingAfter = milliseconds(2000);
constexpr auto idleInterval = milliseconds(100);

PacketQueue::Limits videoLimits(bool live)
{
    if (live)
        return {maxVideoBytes, maxLiveBacklog, PacketQueue::Overflow::DropToKey};
    return {maxVideoBytes, readAhead, PacketQueue::Overflow::Wait};
}

} // namespace

Player::Player(const PlayerArguments &streamArguments, const Controls &sharedControls,
               const FrameFile &sharedFrameFile, PlayerOutput &lineOutput)
    : arguments(streamArguments)
    , controls(sharedControls)
    , frameFile(sharedFrameFile)
    , output(lineOutput)
    , videoPackets(videoLimits(arguments.live))
    , audioPackets({maxAudioBytes, maxLiveBacklog, PacketQueue::Overflow::DropToKey})
    , reader(arguments, controls, videoPackets, audioPackets)
    , pacing(arguments.live)
    , audio(controls, audioPackets, pacing.clock(), track,
            arguments.live ? microseconds(liveSoundDelay) : microseconds(0))
{
}

bool Player::run()
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
            return finish(videoPackets.end() == PacketQueue::End::Finished && pacing.hasShown());
        }
        if (isGivenUp())
            return finish(false);
    }
    return true;
}

void Player::startThreads()
{
    std::thread([this] {
        LastWords::lendStack();
        reader.run();
    }).detach();
    std::thread([this] {
        LastWords::lendStack();
        audio.run();
    }).detach();
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
    patience.gotPacket(controls.now());
    // Pictures come out of the decoder with the position as their time.
    AVPacket &packet = *item.packet;
    track.advance(packet.dts, packet.pts, controls.elapsed(), item.droppedBefore);
    packet.pts += track.offset();
    decoder.send(item);
    showDecoded();
}

void Player::showDecoded()
{
    while (const AVFrame *picture = clientGone ? nullptr : decoder.receive()) {
        patience.gotPicture(controls.now());
        present(*picture);
    }
}

void Player::present(const AVFrame &picture)
{
    const Time position =
        picture.pts == AV_NOPTS_VALUE ? pacing.lastPosition() : Time(milliseconds(picture.pts));
    Pacing::Answer answer = pacing.arrived(position, controls.now(), backlog());
    ranDry = false;
    jumpAsTold(answer);
    decoder.setHurry(answer.isVeryLate);
    while (answer.action == Pacing::Action::Wait) {
        controls.waitUntil(std::min(answer.until, timeLines.due(controls.now())));
        const Time now = controls.now();
        if (now < answer.until) {
            tellTime(pacing.clock().position(now), TimeLines::Beside::Nothing);
            flush();
        }
        answer = pacing.waited(position, now, backlog());
        jumpAsTold(answer);
    }
    if (answer.action == Pacing::Action::Skip) {
        // The client's clock goes on even where its pictures don't.
        tellTime(position, TimeLines::Beside::Nothing);
        flush();
        return;
    }
    controls.waitWhilePaused();
    show(picture, position);
}

Pacing::Backlog Player::backlog() const
{
    return {videoPackets.span(), videoPackets.isEmpty(), ranDry};
}

void Player::jumpAsTold(const Pacing::Answer &answer)
{
    if (answer.jump)
        videoPackets.dropToKey(*answer.jump);
}

void Player::show(const AVFrame &picture, Time position)
{
    if (!converter.convert(picture, frameFile.pixels())) {
        patience.lostPicture(pacing.lastShown());
        return;
    }
    const PictureSize shownSize = fittedSize({picture.width, picture.height});
    if (shownSize != size) {
        size = shownSize;
        output.size(size.width, size.height);
    }
    enter(Phase::Playing);
    pacing.shown(position, controls.now());
    tellTime(position, TimeLines::Beside::Frame);
    output.frame();
    flush();
}

void Player::whileIdle()
{
    if (phase != Phase::Playing)
        return;
    const Time now = controls.now();
    if (now - pacing.lastShown() > bufferingAfter)
        enter(Phase::Buffering);
    else
        tellTime(pacing.idlePosition(now), TimeLines::Beside::Nothing);
    flush();
}

void Player::tellTime(Time position, TimeLines::Beside beside)
{
    // A live stream begins with what the server has kept: the client's clock, which counts from
    // the start of this process, must not run ahead of the wall's.
    if (arguments.live)
        position = std::min(position, controls.elapsed());
    if (const auto told = timeLines.next(position, controls.now(), beside))
        output.time(told->count());
}

milliseconds Player::idlePatience() const
{
    if (phase != Phase::Playing)
        return idleInterval;
    const Time now = controls.now();
    return std::chrono::ceil<milliseconds>(timeLines.due(now) - now);
}

bool Player::isGivenUp() const
{
    return decoder.isUnusable() || patience.isOver(controls.now(), pacing.hasShown());
}

void Player::flush()
{
    clientGone = !output.flush() || clientGone;
}

bool Player::finish(bool ended)
{
    if (clientGone)
        return true;
    if (ended) {
        output.state(StreamState::Ended);
        output.flushPatiently();
    }
    // The client takes a stream for over by this state only.
    output.state(StreamState::Error);
    output.flushPatiently();
    return ended;
}

} // namespace Companion
} // namespace ZorvaneClient
