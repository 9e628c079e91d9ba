// SPDX-License-Identifier: MIT
// The player's whole way from the network to picture and sound, but for the waits: a server on
// the loopback answers with the bytes.
#include <QTcpServer>
#include <QTcpSocket>

#include <thread>

#include "companion/AudioLibrary.h"
#include "companion/AudioPlayer.h"
#include "companion/FrameFile.h"
#include "companion/PictureConverter.h"
#include "companion/PictureDecoder.h"
#include "companion/StreamReader.h"
#include "tests/fuzz/Fuzz.h"

using namespace ZorvaneClient::Companion;

/// Later than any time stamp of a stream.
constexpr auto longAfter = std::chrono::hours(1200);

// In the place of the sound device, one that has played what came long ago.

AudioOutput::AudioOutput() = default;
AudioOutput::~AudioOutput() = default;
void AudioOutput::close()
{
}
void AudioOutput::playSilence(std::chrono::microseconds)
{
}

bool AudioOutput::open(int)
{
    return true;
}

void AudioOutput::play(const std::vector<int16_t> &samples)
{
    for (const int16_t sample : samples)
        check(std::abs(sample) <= (INT16_MAX + 1) / 2);
}

std::chrono::microseconds AudioOutput::queued() const
{
    return -longAfter;
}

/// The position never goes back, and all lies within its memory.
void tryInput(const QByteArray &input)
{
    av_log_set_level(AV_LOG_QUIET);
    static QTcpServer server;
    check(server.isListening() || server.listen(QHostAddress::LocalHost));
    Arguments from{"http://127.0.0.1:" + std::to_string(server.serverPort()), "", "", true};
    PacketQueue video({size_t(1) << 24, longAfter, PacketQueue::Overflow::DropToKey});
    PacketQueue audio({size_t(1) << 24, longAfter, PacketQueue::Overflow::DropToKey});
    Controls controls;
    controls.setVolume(Controls::maxVolume / 2);
    std::thread reader([&] { StreamReader(from, controls, video, audio).run(); });
    check(server.waitForNewConnection(-1));
    QTcpSocket *socket = server.nextPendingConnection();
    check(socket->waitForReadyRead());
    socket->write("HTTP/1.0 200 OK\r\n\r\n" + input);
    socket->waitForBytesWritten();
    delete socket;
    reader.join();

    PictureDecoder decoder;
    const auto showAll = [&decoder] {
        static std::vector<uint8_t> frame(FrameFile::sizeBytes);
        while (const AVFrame *picture = decoder.receive())
            PictureConverter().convert(*picture, frame.data());
    };
    PositionTrack track;
    QueuedPacket item;
    for (int64_t last = INT64_MIN, next; video.pop(item, {}) != PacketQueue::Taken::End;
         last = next) {
        track.advance(item.packet->dts, item.packet->pts, {}, item.droppedBefore);
        next = item.packet->dts + track.offset();
        check(next >= last);
        decoder.send(item);
        showAll();
    }
    decoder.sendEnd();
    showAll();

    PacingClock clock;
    clock.anchor(longAfter, {});
    AudioPlayer(controls, audio, clock, track, {}).run();
}
