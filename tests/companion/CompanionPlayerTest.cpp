// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "tests/companion/StreamPlayer.h"

namespace {

constexpr int deadline = StreamPlayer::deadline;

QByteArray untouched(int bytes)
{
    return QByteArray(bytes, PlayerProcess::untouched);
}

} // namespace

/// The player as its client sees it: arguments, frame file, commands, sound, proxy.
class CompanionPlayerTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        clip = Clips::quarters(QSize(160, 96), 1000);
        QVERIFY(!clip.isEmpty());
    }

    void cannotStart_data()
    {
        const int whole = PlayerProcess::frameFileBytes;
        rows<QByteArray, int, int, QByteArray>(
            {"url", "frameFileBytes", "exitCode", "error"},
            {{"no scheme", "127.0.0.1/flv", whole, 2, "Usage: vlc-stream "},
             {"no frame file", "http://127.0.0.1:1/", -1, 1, "vlc-stream: "},
             {"long", "http://127.0.0.1:1/", whole + 1, 1, "vlc-stream: "}});
    }

    /// The tile hears of it, and the file is neither made nor touched.
    void cannotStart()
    {
        const auto [url, bytes, exitCode, error] = row<QByteArray, int, int, QByteArray>();
        QFile file(QDir::tempPath() + "/frames");
        file.remove();
        const QByteArray content = untouched(qMax(bytes, 0));
        if (bytes >= 0)
            QVERIFY(file.open(QIODevice::ReadWrite) && file.write(content) == bytes);
        file.close();
        StreamPlayer player;
        QVERIFY(player.startWithArguments({url, "frames"}));
        QVERIFY(player.ends());
        QCOMPARE(player.exitCode(), exitCode);
        QVERIFY(player.errorOutput().startsWith(error));
        QCOMPARE(player.states(), exitCode == 1 ? QList<int>{7} : QList<int>());
        QCOMPARE(file.exists(), bytes >= 0);
        QVERIFY(bytes < 0 || (file.open(QIODevice::ReadOnly) && file.readAll() == content));
    }

    void pixels_data()
    {
        rows<QSize, QString, QSize>(
            {"size", "encoder", "shown"},
            {{"ordinary", QSize(320, 180), Clips::h264, QSize(320, 180)},
             {"odd", QSize(159, 97), Clips::mpeg4, QSize(159, 97)},
             {"too large", QSize(2560, 1440), Clips::h264, QSize(2364, 1330)}});
    }

    void pixels()
    {
        const auto [size, encoder, shown] = row<QSize, QString, QSize>();
        StreamPlayer player;
        QVERIFY(player.play(stallScript(Clips::quarters(size, 480, encoder)), "/flv/archive"));
        QVERIFY(player.shows(2));
        QCOMPARE(player.size(), shown);
        player.send("pause");
        QTRY_COMPARE_WITH_TIMEOUT(Clips::faultInQuarters(player.picture()), QString(), deadline);
        const int used = 4 * shown.width() * shown.height();
        QCOMPARE(player.frameFile().mid(used), untouched(PlayerProcess::frameFileBytes - used));
    }

    void sizeChangesInMidStream()
    {
        StreamPlayer player;
        QVERIFY(player.play(stallScript(Clips::quarters(QSize(320, 180), 400)
                                            .then(Clips::quarters(QSize(640, 360), 400))
                                            .then(Clips::quarters(QSize(176, 144), 400))),
                            "/flv/archive"));
        QTRY_COMPARE_WITH_TIMEOUT(player.size(), QSize(176, 144), deadline);
        QTRY_COMPARE_WITH_TIMEOUT(Clips::faultInQuarters(player.picture()), QString(), deadline);
        QByteArray lines;
        for (const PlayerLine &line : player.lines()) {
            if (!line.text.startsWith("time ") && !lines.endsWith(line.text))
                lines += ", " + line.text;
        }
        QCOMPARE(lines, QByteArray(", state 1, state 2, state 3, size 320 180, frame, "
                                   "size 640 360, frame, size 176 144, frame"));
    }

    /// Of a stream that stops after its first key frame that picture is shown.
    void soundDoesNotHoldUpThePicture()
    {
        StreamPlayer player;
        // The encoders put the first picture at 26 ms or before.
        QVERIFY(player.play(stallScript(Clips::withTone(400, "aac"_s), 45)));
        QTRY_COMPARE_WITH_TIMEOUT(player.frames(), 1, 8000);
        QCOMPARE(Clips::faultInQuarters(player.picture()), QString());
    }

    /// For longer than a stream may stall, too.
    void pauseFreezesAndStopsReading()
    {
        const FlvClip heavy = Clips::made("-f lavfi -i nullsrc=s=640x360:r=25,"
                                          "geq=random(1)*255:128:128 -t 1 -c:v libx264 "
                                          "-preset ultrafast -qp 6 -g 5 -tune zerolatency "
                                          "-pix_fmt yuv420p"_s);
        QVERIFY(heavy.bytes().size() > 3'000'000);
        StreamPlayer player;
        QVERIFY(player.play(StreamScript::of(heavy.repeated(60))));
        QVERIFY(player.shows(5));
        player.send("pause");
        const qint64 pausedAt = player.elapsed();
        qint64 taken = -1;
        QTRY_VERIFY_WITH_TIMEOUT(
            (QTest::qWait(1000), taken == std::exchange(taken, player.server.takenBytes())),
            deadline);
        const int frames = player.frames();
        const QByteArray picture = player.frameFile();
        const auto lines = player.lines().size();
        QTRY_VERIFY_WITH_TIMEOUT(player.elapsed() > pausedAt + 12'000, deadline);
        QCOMPARE(player.server.takenBytes(), taken);
        QCOMPARE(player.lines().size(), lines);
        QVERIFY(player.frameFile() == picture);

        player.send("unpause");
        QVERIFY(player.shows(frames + 10));
        QTRY_VERIFY_WITH_TIMEOUT(player.server.takenBytes() > taken + heavy.bytes().size(),
                                 deadline);
        QVERIFY(!player.states().contains(4) && !player.states().contains(7));
    }

    /// Other commands are no pings.
    void noPing()
    {
        StreamPlayer player;
        QVERIFY(player.play(StreamScript::of(clip.repeated(30))));
        player.stopPinging();
        QTRY_VERIFY_WITH_TIMEOUT(player.elapsed() > 8000, deadline);
        player.send("unpause");
        QVERIFY(player.ends());
        QVERIFY(player.elapsed() >= 10'000 && player.elapsed() < 18'000);
        QCOMPARE(player.exitCode(), 0);
        QVERIFY(!player.states().contains(7));
    }

    void closedInput()
    {
        for (const int frames : {0, 10}) {
            StreamPlayer player;
            QVERIFY(player.play(stallScript(clip, frames * 100)));
            QTRY_COMPARE_WITH_TIMEOUT(player.server.heads().size(), 1, deadline);
            QVERIFY(player.shows(frames));
            player.closeInput();
            QTRY_VERIFY_WITH_TIMEOUT(!player.isRunning(), 3000);
            QCOMPARE(player.exitCode(), 0);
        }
    }

    void sound_data()
    {
        rows<QString, int, double>({"codec", "volume", "share"},
                                   {{"MP3", "libmp3lame", 1000, 1.0}, {"AAC", "aac", 50, 0.5}});
    }

    /// The audio library writes what would be heard into a file.
    void sound()
    {
        const auto [codec, volume, share] = row<QString, int, double>();
        constexpr double tonePeak = 32767.0 / 8; // of ffmpeg's "sine"
        constexpr int bytesPerSecond = 4 * 44'100;
        QFile file("sound.raw"_s);
        file.remove();
        StreamPlayer player;
        player.setEnvironment("SDL_AUDIODRIVER", "disk");
        player.setEnvironment("SDL_DISKAUDIOFILE", QFileInfo(file).absoluteFilePath().toUtf8());
        QVERIFY(player.play(StreamScript::of(Clips::withTone(8000, codec))));
        player.send("volume 0");
        QVERIFY(player.shows(25));
        QVERIFY(!file.exists());
        player.send("volume " + QByteArray::number(volume));
        QTRY_VERIFY_WITH_TIMEOUT(file.size() > 2 * bytesPerSecond, deadline);
        player.send("volume 0");
        QVERIFY(player.shows(player.frames() + 15));
        QVERIFY(file.open(QIODevice::ReadOnly));
        const QByteArray bytes = file.readAll();
        QVERIFY(player.ends());
        QCOMPARE(player.exitCode(), 0);
        QCOMPARE(file.size(), bytes.size());

        // Of stereo: the peak, and how often the left channel rises through zero in a second.
        const auto *samples = reinterpret_cast<const qint16 *>(bytes.constData());
        int peak = 0;
        QList<int> rises;
        for (int i = 2; i < bytes.size() / 2; i += 2) {
            peak = qMax(peak, qAbs(int(samples[i])));
            if (samples[i - 2] < 0 && samples[i] >= 0)
                rises << i / 2;
        }
        QVERIFY2(qAbs(peak - tonePeak * share) < tonePeak * 0.2, QByteArray::number(peak));
        const double pitch = (rises.size() - 1) * 44'100.0 / (rises.last() - rises.first());
        QVERIFY2(pitch > 300 && pitch < 480, QByteArray::number(pitch));
    }

    void proxy_data()
    {
        rows<QByteArray, QByteArray, QByteArray>(
            {"user", "password", "given"},
            {{"open", "", "", ""},
             {"no user", "", "secret", "secret"},
             {"any characters", "dom\\an na@x", "a:/@%41 \"?#\\&=", "a:/@%41 \"?#\\&="},
             {"wrong password", "anna", "secret", "wrong"}});
    }

    void proxy()
    {
        const auto [user, password, given] = row<QByteArray, QByteArray, QByteArray>();
        StreamPlayer player;
        QVERIFY(player.server.start(StreamScript::of(clip)));
        if (!password.isEmpty())
            player.server.requireProxyAuthorization(user, password);
        QList<QByteArray> more = {":http-proxy=http://" + (user.isEmpty() ? "" : user + "@") +
                                  player.server.url("/").mid(7)};
        if (!given.isEmpty())
            more.append(":http-proxy-pwd=" + given);
        player.setEnvironment("no_proxy", "*");
        QVERIFY(player.start("http://streams.zorvane.example:8080/flv/live?q=1", more));
        QVERIFY(player.ends());
        QCOMPARE(player.frames() > 3, given == password);
        QCOMPARE(player.exitCode(), given == password ? 0 : 1);
        const QByteArray head = player.server.heads().last();
        QVERIFY2(head.startsWith("GET http://streams.zorvane.example:8080/flv/live?q=1 HTTP/1.1\r"),
                 head.constData());
        QCOMPARE(head.contains("Proxy-Authorization: Basic " + (user + ":" + given).toBase64()),
                 !given.isEmpty());
    }

    /// A camera of the local network gets no proxy argument, so it goes direct; and the client
    /// escapes nothing.
    void direct()
    {
        StreamPlayer player;
        QVERIFY(player.server.start(StreamScript::of(clip)));
        player.setEnvironment("http_proxy",
                              "http://127.0.0.1:" + QByteArray::number(StreamServer::deadPort()));
        QVERIFY(player.start(player.server.url("/flv/live?server=a b\r\nX: y&x=%41+")));
        QVERIFY(player.shows(3));
        QVERIFY(player.server.heads().first().startsWith(
            "GET /flv/live?server=a%20b%0D%0AX:%20y&x=%41+ HTTP/1.1\r\n"));
    }

private:
    FlvClip clip;
};

QTEST_GUILESS_MAIN(CompanionPlayerTest)
#include "CompanionPlayerTest.moc"
