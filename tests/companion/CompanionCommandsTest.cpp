// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include <cstdlib>

#include "tests/companion/Clips.h"
#include "tests/support/PlayerProcess.h"
#include "tests/support/StreamServer.h"

namespace {

constexpr int deadline = 30'000;
constexpr int soundRate = 44'100;

/// Of interleaved stereo: loudest sample, and how often the left channel rises through zero
/// in each second, both over the part that isn't silent.
struct Sound {
    int peak = 0;
    double frequency = 0;
};

Sound soundIn(const QByteArray &bytes)
{
    const auto *samples = reinterpret_cast<const qint16 *>(bytes.constData());
    const int frames = static_cast<int>(bytes.size()) / 4;
    Sound sound;
    int first = -1;
    int last = -1;
    int rises = 0;
    for (int i = 1; i < frames; ++i) {
        const int value = samples[2 * i];
        sound.peak = qMax(sound.peak, std::abs(value));
        if (samples[2 * i - 2] < 0 && value >= 0) {
            first = first < 0 ? i : first;
            last = i;
            ++rises;
        }
    }
    if (last > first)
        sound.frequency = (rises - 1) * double(soundRate) / (last - first);
    return sound;
}

QByteArray contents(const QString &path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

/// What the client says on standard input, and what comes of it.
class CompanionCommandsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        heavy = FlvClip::make("-f lavfi -i nullsrc=s=640x360:r=25,geq=random(1)*255:128:128"
                              " -t 1 -c:v libx264 -preset ultrafast -qp 6 -g 5"
                              " -tune zerolatency -pix_fmt yuv420p"_s.split(QLatin1Char(' ')));
        counting = Clips::counting(4000);
        QVERIFY(heavy.bytes().size() > 3'000'000);
        QVERIFY(!counting.isEmpty());
    }

    /// For longer than a stream may stall, too.
    void pauseFreezesAndStopsReading()
    {
        StreamServer server;
        QVERIFY(server.start(StreamScript::of(heavy.repeated(60))));
        PlayerProcess player;
        QVERIFY(player.start(server.url("/flv/live")));
        QTRY_VERIFY_WITH_TIMEOUT(player.frames() > 5, deadline);

        player.send("pause");
        const qint64 pausedAt = player.elapsed();
        qint64 taken = -1;
        const auto serverIsStuck = [&] {
            return taken == std::exchange(taken, server.takenBytes());
        };
        QTRY_VERIFY_WITH_TIMEOUT((QTest::qWait(1000), serverIsStuck()), deadline);
        const int frames = player.frames();
        const QByteArray picture = player.frameFile();
        const auto lines = player.lines().size();
        QTRY_VERIFY_WITH_TIMEOUT(player.elapsed() > pausedAt + 12'000, deadline);
        QVERIFY(player.isRunning());
        QCOMPARE(server.takenBytes(), taken);
        QCOMPARE(player.frames(), frames);
        QCOMPARE(player.lines().size(), lines);
        QVERIFY(player.frameFile() == picture);
        QVERIFY(!player.states().contains(4));

        player.send("unpause");
        QTRY_VERIFY_WITH_TIMEOUT(player.frames() > frames + 10, deadline);
        QTRY_VERIFY_WITH_TIMEOUT(server.takenBytes() > taken + heavy.bytes().size(), deadline);
        QVERIFY(!player.states().contains(7));
    }

    void strangeLines()
    {
        StreamServer server;
        QVERIFY(server.start(StreamScript::of(counting.repeated(10))));
        PlayerProcess player;
        QVERIFY(player.start(server.url("/flv/live")));
        for (const char *line :
             {"", " ", "PAUSE", "pauses", "volume", "volume ", "volume x", "volume 5x",
              "volume 99999999999999999999", "volume -1", "state 7", "ping pong"})
            player.send(line);
        player.send(QByteArray(60'000, 'a') + " pause");
        player.send(QByteArray("pause\0", 6) + "more");
        QTRY_VERIFY_WITH_TIMEOUT(player.frames() > 20, deadline);

        player.send("  pause \r");
        int frames = -1;
        const auto isStill = [&] { return frames == std::exchange(frames, player.frames()); };
        QTRY_VERIFY_WITH_TIMEOUT((QTest::qWait(500), isStill()), deadline);
        QVERIFY(player.isRunning());
    }

    void noPing()
    {
        StreamServer server;
        QVERIFY(server.start(StreamScript::of(counting.repeated(10))));
        PlayerProcess player;
        QVERIFY(player.start(server.url("/flv/live")));
        player.stopPinging();
        player.send("volume 0");
        QTRY_VERIFY_WITH_TIMEOUT(player.elapsed() > 8000, deadline);
        QVERIFY(player.isRunning());
        player.send("unpause");
        QTRY_VERIFY_WITH_TIMEOUT(!player.isRunning(), 10'000);
        QVERIFY2(player.elapsed() >= 10'000, QByteArray::number(player.elapsed()));
        QCOMPARE(player.exitCode(), 0);
        QVERIFY(!player.states().contains(7));
    }

    void closedInput_data()
    {
        rows<QByteArray, int, bool>({"command", "frames", "silentServer"},
                                    {
                                        {"while it waits for the server", QByteArray(), 0, true},
                                        {"playing", QByteArray("volume 50"), 10, false},
                                    });
    }

    void closedInput()
    {
        const auto [command, frames, silentServer] = row<QByteArray, int, bool>();
        StreamScript script;
        script.clip = counting;
        if (silentServer) {
            script.stopAt = 0;
            script.ending = StreamScript::Ending::Stall;
        }
        StreamServer server;
        QVERIFY(server.start(script));
        PlayerProcess player;
        QVERIFY(player.start(server.url("/flv/live")));
        QTRY_VERIFY_WITH_TIMEOUT(player.frames() >= frames, deadline);
        if (silentServer)
            QTRY_COMPARE_WITH_TIMEOUT(server.heads().size(), 1, deadline);
        player.send(command);
        player.closeInput();
        QTRY_VERIFY_WITH_TIMEOUT(!player.isRunning(), 3000);
        QCOMPARE(player.exitCode(), 0);
    }

    void sound_data()
    {
        rows<QString, QByteArray, double>({"codec", "volume", "share"},
                                          {
                                              {"MP3", "libmp3lame", QByteArray("volume 1000"), 1.0},
                                              {"AAC, half", "aac", QByteArray("volume 50"), 0.5},
                                          });
    }

    /// The audio library writes what would be heard into a file.
    void sound()
    {
        const auto [codec, volume, share] = row<QString, QByteArray, double>();
        constexpr double tonePeak = 32767.0 / 8; // of ffmpeg's "sine"
        const QString path = QDir::current().filePath("sound.raw"_s);
        QFile::remove(path);
        StreamScript script;
        script.clip = Clips::withTone(3000, codec);
        QVERIFY(!script.clip.isEmpty());
        StreamServer server;
        QVERIFY(server.start(script));
        PlayerProcess player;
        player.setEnvironment("SDL_AUDIODRIVER", "disk");
        player.setEnvironment("SDL_DISKAUDIOFILE", path.toUtf8());
        QVERIFY(player.start(server.url("/flv/live")));
        player.send(volume);
        QTRY_VERIFY_WITH_TIMEOUT(!player.isRunning(), deadline);
        QCOMPARE(player.exitCode(), 0);
        QVERIFY(player.frames() > 10);

        const Sound heard = soundIn(contents(path));
        QVERIFY2(qAbs(heard.peak - tonePeak * share) < tonePeak * 0.2,
                 QByteArray::number(heard.peak));
        QVERIFY2(heard.frequency > 300 && heard.frequency < 480,
                 QByteArray::number(heard.frequency));
    }

    void noSoundAtVolumeZero()
    {
        const QString path = QDir::current().filePath("silence.raw"_s);
        StreamServer server;
        QVERIFY(server.start(StreamScript::of(Clips::withTone(6000, "aac"_s))));
        PlayerProcess player;
        player.setEnvironment("SDL_AUDIODRIVER", "disk");
        player.setEnvironment("SDL_DISKAUDIOFILE", path.toUtf8());
        QVERIFY(player.start(server.url("/flv/live")));
        player.send("volume 0");
        QTRY_VERIFY_WITH_TIMEOUT(player.frames() > 25, deadline);
        QVERIFY(!QFile::exists(path));

        player.send("volume 80");
        QTRY_VERIFY_WITH_TIMEOUT(soundIn(contents(path)).peak > 1000, deadline);
        player.send("volume 0");
        const int frames = player.frames();
        QTRY_VERIFY_WITH_TIMEOUT(player.frames() > frames + 15, deadline);
        const qint64 bytes = QFileInfo(path).size();
        QTRY_VERIFY_WITH_TIMEOUT(!player.isRunning(), deadline);
        QCOMPARE(QFileInfo(path).size(), bytes);
    }

private:
    FlvClip heavy;
    FlvClip counting;
};

QTEST_GUILESS_MAIN(CompanionCommandsTest)
#include "CompanionCommandsTest.moc"
