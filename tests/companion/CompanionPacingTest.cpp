// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "tests/companion/Clips.h"
#include "tests/support/PlayerProcess.h"
#include "tests/support/StreamServer.h"

namespace {

constexpr int deadline = 30'000;
constexpr int pictureInterval = 40;

/// Milliseconds of the server's stream between what it has sent and what is to be seen.
int latency(const StreamServer &server, const PlayerProcess &player)
{
    const int sent = server.sentMilliseconds() / pictureInterval % Clips::maxCount;
    const int shown = Clips::countIn(player.picture());
    return (sent - shown + Clips::maxCount) % Clips::maxCount * pictureInterval;
}

/// Middle value of what is seen during the next two seconds.
int usualLatency(const StreamServer &server, const PlayerProcess &player)
{
    constexpr int samples = 21;
    constexpr int sampleMilliseconds = 100;
    QVector<int> values;
    for (int i = 0; i < samples; ++i) {
        QTest::qWait(sampleMilliseconds);
        values.append(latency(server, player));
    }
    std::sort(values.begin(), values.end());
    return values.at(samples / 2);
}

QList<int> times(const PlayerProcess &player)
{
    QList<int> values;
    for (const PlayerLine &line : player.lines()) {
        if (line.text.startsWith("time "))
            values.append(line.text.mid(5).toInt());
    }
    return values;
}

QString faultInTimes(const PlayerProcess &player)
{
    const QList<int> values = times(player);
    for (int i = 1; i < values.size(); ++i) {
        if (values.at(i) < values.at(i - 1))
            return "%1 after %2"_s.arg(values.at(i)).arg(values.at(i - 1));
    }
    return QString();
}

/// Every line is one of the protocol's.
QString faultInLines(const PlayerProcess &player)
{
    const QRegularExpression known(
        "^(frame|time [0-9]+|state [12367]|size [1-9][0-9]* [1-9][0-9]*)$"_s);
    for (const PlayerLine &line : player.lines()) {
        if (!known.match(QString::fromLatin1(line.text)).hasMatch())
            return QString::fromLatin1(line.text);
    }
    return QString();
}

} // namespace

/// When pictures come, and what is said about the time.
class CompanionPacingTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        counting = Clips::counting(4000);
        QVERIFY(!counting.isEmpty());
    }

    void playsInTheStreamsTime_data()
    {
        rows<double, QByteArray, bool>(
            {"serverSpeed", "path", "chunked"},
            {
                {"archive, all at once", 0.0, QByteArray("/flv/archive"), false},
                {"live", 1.0, QByteArray("/flv/live?q=2"), false},
            });
    }

    void playsInTheStreamsTime()
    {
        const auto [serverSpeed, path, chunked] = row<double, QByteArray, bool>();
        StreamScript script;
        script.clip = counting;
        script.speed = serverSpeed;
        script.chunked = chunked;
        StreamServer server;
        QVERIFY(server.start(script));
        PlayerProcess player;
        QVERIFY(player.start(server.url(path)));
        QTRY_VERIFY_WITH_TIMEOUT(!player.isRunning(), deadline);

        const QList<int> expectedStates = {1, 2, 3, 6, 7};
        QCOMPARE(player.states(), expectedStates);
        QCOMPARE(player.exitCode(), 0);
        QCOMPARE(player.lines().last().text, QByteArray("state 7"));
        QCOMPARE(faultInLines(player), QString());
        QCOMPARE(faultInTimes(player), QString());

        const qint64 playing = player.timeOfState(6) - player.firstFrameTime();
        QVERIFY2(playing > 3700, QByteArray::number(playing));
        QVERIFY2(player.frames() > 50 && player.frames() <= 100,
                 QByteArray::number(player.frames()));
        QVERIFY2(player.lastTime() > 3700 && player.lastTime() < 4300,
                 QByteArray::number(player.lastTime()));
        QVERIFY2(times(player).size() >= 4 * 3.7, QByteArray::number(times(player).size()));
    }

    /// Sixteen seconds in one: more pictures than can be seen come no faster than a hundred a
    /// second, and the time is the stream's own.
    void fastArchiveIsThinnedOut()
    {
        StreamServer server;
        QVERIFY(server.start(StreamScript::of(counting.repeated(4).faster(16), 0)));
        PlayerProcess player;
        QVERIFY(player.start(server.url("/flv/archive?speed=16")));
        QTRY_VERIFY_WITH_TIMEOUT(!player.isRunning(), deadline);
        QCOMPARE(player.exitCode(), 0);
        QVERIFY2(player.frames() > 5 && player.frames() <= 110,
                 QByteArray::number(player.frames()));
        QVERIFY2(player.lastTime() > 800 && player.lastTime() <= 1000,
                 QByteArray::number(player.lastTime()));
    }

    void timeRunsBetweenSlowPictures()
    {
        StreamServer server;
        QVERIFY(server.start(StreamScript::of(
            FlvClip::make("-f lavfi -i testsrc=s=160x96:r=1 -t 4 -c:v libx264 "
                          "-tune zerolatency -pix_fmt yuv420p"_s.split(QLatin1Char(' '))),
            0)));
        PlayerProcess player;
        QVERIFY(player.start(server.url("/flv/archive")));
        QTRY_VERIFY_WITH_TIMEOUT(!player.isRunning(), deadline);
        QCOMPARE(player.frames(), 4);
        QVERIFY2(times(player).size() >= 12, QByteArray::number(times(player).size()));
        QCOMPARE(faultInTimes(player), QString());
    }

    /// Servers begin with what they have kept since the last key frame or longer.
    void liveShowsTheNewest()
    {
        StreamScript script;
        script.clip = counting.repeated(15);
        script.burst = 30'000;
        StreamServer server;
        QVERIFY(server.start(script));
        PlayerProcess player;
        QVERIFY(player.start(server.url("/flv/live")));
        QTRY_VERIFY_WITH_TIMEOUT(player.frames() > 10, deadline);
        const int value = usualLatency(server, player);
        QVERIFY2(value < 1000, QByteArray::number(value));
        QVERIFY2(player.lastTime() <= player.elapsed(), "the client's clock runs ahead");
        QCOMPARE(faultInTimes(player), QString());
        QCOMPARE(faultInLines(player), QString());
    }

    /// A network that holds pictures back and brings several at once: all are shown, in their time.
    void liveInBundles()
    {
        StreamScript script;
        script.clip = counting;
        script.bundle = 160;
        StreamServer server;
        QVERIFY(server.start(script));
        PlayerProcess player;
        QVERIFY(player.start(server.url("/flv/live")));
        QTRY_VERIFY_WITH_TIMEOUT(!player.isRunning(), deadline);
        QVERIFY2(player.frames() > 80, QByteArray::number(player.frames()));
        const qint64 playing = player.timeOfState(6) - player.firstFrameTime();
        QVERIFY2(playing > 3500, QByteArray::number(playing));
    }

    void timestampsJump_data()
    {
        rows<int, int, int>({"gap", "leastTime", "mostTime"},
                            {
                                {"back", -3900, 7000, 8500},
                                {"seven seconds ahead", 7000, 14'000, 15'500},
                                {"an hour ahead", 3'600'000, 7000, 8500},
                            });
    }

    void timestampsJump()
    {
        const auto [gap, leastTime, mostTime] = row<int, int, int>();
        StreamServer server;
        QVERIFY(server.start(StreamScript::of(counting.then(counting, gap), 0)));
        PlayerProcess player;
        QVERIFY(player.start(server.url("/flv/archive")));
        QTRY_VERIFY_WITH_TIMEOUT(!player.isRunning(), deadline);
        QCOMPARE(player.exitCode(), 0);
        QCOMPARE(faultInTimes(player), QString());
        QVERIFY2(player.lastTime() >= leastTime && player.lastTime() <= mostTime,
                 QByteArray::number(player.lastTime()));
    }

private:
    FlvClip counting;
};

QTEST_GUILESS_MAIN(CompanionPacingTest)
#include "CompanionPacingTest.moc"
