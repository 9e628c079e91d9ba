// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include <csignal>
#include <vector>

#include "tests/companion/StreamPlayer.h"

namespace {

/// The limit for a silent stream is ten seconds; the rest is for a machine under load. Streams
/// that go on are longer, so that it isn't their end that is seen.
constexpr int errorDeadline = 20'000;
constexpr int longSeconds = 30;

/// Each picture is one even gray, brighter with each picture, so that it tells its number.
constexpr int maxCount = 100;
FlvClip countingClip(int milliseconds)
{
    return Clips::made("-f lavfi -i color=c=black:s=160x96:r=25,format=yuv420p,"
                       "geq=lum=20+2*mod(N\\,100):cb=128:cr=128 "_s +
                       Clips::h264 + " -qp 4 -sc_threshold 0 -t %1ms"_s.arg(milliseconds));
}

int countIn(const QImage &picture)
{
    const int gray = qGreen(picture.pixel(picture.rect().center()));
    return qRound((16 + gray * 219.0 / 255.0 - 20) / 2);
}

StreamScript rawScript(const QByteArray &bytes)
{
    return with(StreamScript(), &StreamScript::raw, bytes);
}

StreamScript redirectScript(const QByteArray &location)
{
    return with(with(StreamScript(), &StreamScript::status, 302), &StreamScript::location,
                location);
}

using Players = std::vector<std::unique_ptr<StreamPlayer>>;

/// Players of all that at once, at their ends.
Players played(const QList<StreamScript> &scripts)
{
    Players players;
    for (const StreamScript &script : scripts) {
        players.push_back(std::make_unique<StreamPlayer>());
        players.back()->play(script);
        players.back()->send("volume 10");
    }
    for (const auto &player : players)
        player->ends();
    return players;
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

/// Every line is one of the protocol's; times never fall, and come no oftener than each 120 ms.
QByteArray faultIn(const PlayerProcess &player)
{
    const QRegularExpression known(
        "^(frame|time [0-9]+|state [12367]|size [1-9][0-9]* [1-9][0-9]*)$"_s);
    for (const PlayerLine &line : player.lines()) {
        if (!known.match(QString::fromLatin1(line.text)).hasMatch())
            return line.text;
    }
    const QList<int> told = times(player);
    if (!std::is_sorted(told.begin(), told.end()))
        return "time goes back";
    return told.size() > player.elapsed() / 120 + 1 ? "too many times" : "";
}

} // namespace

/// What streams of all kinds become: pictures in their time, or an end in time.
class CompanionStreamsTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        clip = Clips::quarters(QSize(160, 96), 1000);
        withTone = Clips::withTone(1000, "aac"_s);
        counting = countingClip(4000);
        QVERIFY(!clip.isEmpty() && !withTone.isEmpty() && !counting.isEmpty());
    }

    /// With pictures or without, by itself or because nothing comes any more that makes one.
    void ends()
    {
        FlvClip broken = clip.repeated(longSeconds);
        for (FlvTag &tag : broken.tags) {
            constexpr int firstPayloadByte = 11 + 5;
            const int length = int(tag.bytes.size()) - firstPayloadByte - 4;
            if (tag.bytes.at(0) == 9 && tag.milliseconds > 600 && length > 0)
                tag.bytes.replace(firstPayloadByte, length, QByteArray(length, '\x7F'));
        }
        const QByteArray garbage = garbled(QByteArray(3'000'000, '\0'), 1, 12'000'000, 0);
        const StreamScript stalled = stallScript(clip, 600);
        const StreamScript closed =
            with(stalled, &StreamScript::ending, StreamScript::Ending::Close);
        StreamServer elsewhere;
        QVERIFY(elsewhere.start(closed));
        const std::pair<StreamScript, QByteArray> streams[] = {
            {redirectScript("/flv/live"), "7"},
            {redirectScript("file:///etc/hostname"), "7"},
            {rawScript(clip.header), "7"},
            {stallScript(clip, 0), "7"},
            {with(rawScript(clip.header + garbage), &StreamScript::rawBytesPerSecond, 100'000),
             "7"},
            {StreamScript::of(
                 Clips::made(Clips::tone + " -c:a libmp3lame -t " + QString::number(longSeconds))),
             "7"},
            {closed, "3 6 7"},
            {with(closed, &StreamScript::ending, StreamScript::Ending::Reset), "3 6 7"},
            {redirectScript(elsewhere.url("/other")), "3 6 7"},
            // The HTTP layer takes this for a close.
            {with(closed, &StreamScript::contentLength, clip.bytes().size()), "3 7"},
            {stalled, "1 2 3 2 7"},
            {StreamScript::of(broken), "1 2 3 2 7"}};
        QList<StreamScript> scripts;
        for (const auto &stream : streams)
            scripts << stream.first;
        const Players players = played(scripts);
        for (size_t i = 0; i < players.size(); ++i) {
            const StreamPlayer &player = *players[i];
            const QByteArray end = streams[i].second;
            QByteArray states;
            for (const int state : player.states())
                states += ' ' + QByteArray::number(state);
            const bool shown = end.contains('3');
            const qint64 blind =
                player.timeOfState(7) - (shown ? player.firstFrameTime() + 600 : 0);
            const QByteArray text = QByteArray::number(qint64(i)) + ':' + states + " after " +
                                    QByteArray::number(blind);
            QVERIFY2(states.endsWith(' ' + end), text);
            QVERIFY2(states.contains('6') == end.contains('6'), text);
            QCOMPARE(player.exitCode(), end.contains('6') ? 0 : 1);
            QVERIFY2(blind < errorDeadline && (blind > 8500 || end != "1 2 3 2 7"), text);
            QVERIFY2(shown ? player.frames() > 5 : player.frames() == 0, text);
            QVERIFY2(shown || player.frameFile() == QByteArray(PlayerProcess::frameFileBytes,
                                                               PlayerProcess::untouched),
                     text);
        }
    }

    /// A stream address never reads a file of this machine.
    void otherSchemes()
    {
        QFile file("clip.flv"_s);
        QVERIFY(file.open(QIODevice::WriteOnly) && file.write(clip.bytes()) > 0 && file.flush());
        for (const QByteArray prefix : {"file://", "subfile,,start,0,end,0,,://"}) {
            StreamPlayer player;
            QVERIFY(player.start(prefix + QFileInfo(file).absoluteFilePath().toUtf8()));
            QVERIFY(player.ends());
            QVERIFY(player.exitCode() == 1 || player.exitCode() == 2);
            QCOMPARE(player.frames(), 0);
        }
    }

    /// Whatever the bytes are, each child says its 7 and ends by itself, with no more lines than
    /// the protocol has, and with a frame file of the old size.
    void damagedStreams()
    {
        const FlvClip odd = Clips::quarters(QSize(161, 97), 600, Clips::flv);
        const FlvClip sizes = clip.then(Clips::quarters(QSize(2048, 1536), 120)).then(clip);
        QList<StreamScript> scripts;
        for (quint32 seed = 1; seed <= 4; ++seed) {
            const int count = seed % 2 == 0 ? 10 : 1000;
            for (const FlvClip &whole : {clip, withTone, odd, sizes})
                scripts << rawScript(garbled(whole.bytes(), seed, count, whole.header.size()));
        }
        for (const int length : {1, 12, 15, 300, 2000, 5000, 8000, 11'000})
            scripts << rawScript(withTone.bytes().left(length));
        QVERIFY(withTone.bytes().size() > 11'000);
        for (int first = 0; first < scripts.size(); first += 8) {
            for (const auto &player : played(scripts.mid(first, 8))) {
                QVERIFY(player->exitCode() == 0 || player->exitCode() == 1);
                QCOMPARE(player->lastState(), 7);
                QCOMPARE(faultIn(*player), QByteArray());
                QCOMPARE(player->frameFile().size(), PlayerProcess::frameFileBytes);
                QVERIFY(player->size().width() * player->size().height() <= 3'145'728);
            }
        }
    }

    void outputClosed()
    {
        QProcess reader;
        StreamPlayer player;
        player.pipeInto(&reader);
        reader.start("true"_s, QStringList());
        QVERIFY(player.play(StreamScript::of(clip.repeated(10))));
        QTRY_VERIFY_WITH_TIMEOUT(!player.isRunning(), 5000);
        QVERIFY(player.exitCode() >= 0);
    }

    /// All of a stream is shown and in its time, whether it comes at once, evenly, or in bundles
    /// of several pictures. Time stamps that jump without reason are not followed.
    void playsInTheStreamsTime()
    {
        const FlvClip half = countingClip(2000);
        const FlvClip slow = Clips::made("-f lavfi -i testsrc=s=160x96:r=1 -t 3 " + Clips::h264);
        const FlvClip fast = counting.repeated(4).faster(16);
        const StreamScript live = StreamScript::of(counting);
        const struct {
            const char *path;
            StreamScript script;
            int frames; ///< at least
            int mostFrames;
            int length; ///< milliseconds
        } streams[] = {
            {"/archive", StreamScript::of(counting, 0), 51, 100, 4000},
            // More pictures than can be seen come no faster than a hundred a second.
            {"/archive", StreamScript::of(fast, 0), 6, 110, 1000},
            {"/archive", StreamScript::of(slow, 0), 3, 3, 2300},
            {"/archive", StreamScript::of(half.then(half, -1900), 0), 51, 100, 4000},
            {"/archive", StreamScript::of(half.then(half, 7000), 0), 51, 100, 11'000},
            {"/archive", StreamScript::of(half.then(half, 3'600'000), 0), 51, 100, 4000},
            {"/live?q=2", live, 51, 100, 4000},
            {"/live", with(live, &StreamScript::bundle, 160), 70, 100, 4000},
        };
        Players players;
        for (const auto &stream : streams) {
            players.push_back(std::make_unique<StreamPlayer>());
            QVERIFY(players.back()->play(stream.script, stream.path));
        }
        const QDeadlineTimer busy(deadline);
        for (size_t i = 0; i < players.size();) {
            const auto &stream = streams[i];
            auto &player = players[i];
            QVERIFY(player->ends());
            const int playing = int(player->timeOfState(6) - player->firstFrameTime());
            const int told = int(times(*player).size());
            const QByteArray text =
                QString::asprintf("%d: %d frames, %d times to %d in %d ms", int(i),
                                  player->frames(), told, player->lastTime(), playing)
                    .toLatin1();
            QCOMPARE(player->exitCode(), 0);
            QCOMPARE(player->states(), (QList<int>{1, 2, 3, 6, 7}));
            QVERIFY2(faultIn(*player).isEmpty(), text + faultIn(*player));
            QVERIFY2(player->frames() <= stream.mostFrames, text);
            QVERIFY2(qAbs(player->lastTime() - stream.length) < 500, text);
            if (player->frames() >= stream.frames && told >= playing / 300 &&
                playing > qMin(stream.length, 4000) - 500) {
                ++i;
                continue;
            }
            // A machine that is busy shows less of a stream; then that comes again, alone.
            QVERIFY2(!busy.hasExpired(), text);
            player = std::make_unique<StreamPlayer>();
            QVERIFY(player->play(stream.script, stream.path));
        }
    }

    /// A network that holds a second back and then brings it at once: that is shown whole, too.
    void bundleThatIsLate()
    {
        // Its second picture takes long to decode, so that the others are there after it.
        const FlvClip film = Clips::quarters(QSize(1280, 720), 40)
                                 .then(Clips::made("-f lavfi -i mandelbrot=s=1280x720:r=25,"
                                                   "loop=-1:1 -t 0.92 " +
                                                   Clips::h264 + " -crf 30"));
        StreamPlayer player;
        QVERIFY(
            player.play(with(StreamScript::of(film), &StreamScript::bundle, 1000), "/flv/archive"));
        QVERIFY(player.shows(1));
        ::kill(pid_t(player.pid()), SIGSTOP);
        QTRY_VERIFY_WITH_TIMEOUT(player.server.takenBytes() > film.bytes().size(), deadline);
        ::kill(pid_t(player.pid()), SIGCONT);
        QVERIFY(player.ends());
        QVERIFY2(player.frames() > 15 && player.frames() <= 24,
                 QByteArray::number(player.frames()));
    }

    /// Servers begin with what they have kept since the last key frame or longer.
    void liveShowsTheNewest()
    {
        const FlvClip stream = counting.repeated(15);
        StreamPlayer player;
        QVERIFY(player.play(with(StreamScript::of(stream), &StreamScript::burst, 30'000)));
        QVERIFY(player.shows(10));
        // However long the machine takes to catch up: then the player keeps up.
        for (int inTime = 0; inTime < 16;) {
            QVERIFY(player.server.sentMilliseconds() < stream.duration());
            QVERIFY(player.shows(player.frames() + 1));
            const int sent = player.server.sentMilliseconds() / 40;
            const int behind = sent + maxCount - countIn(player.picture());
            inTime = behind % maxCount > 25 ? 0 : inTime + 1; // pictures in a second
        }
        QVERIFY2(player.lastTime() <= player.elapsed(), "the client's clock runs ahead");
        QCOMPARE(faultIn(player), QByteArray());
    }

private:
    FlvClip clip;
    FlvClip withTone;
    FlvClip counting;
};

QTEST_GUILESS_MAIN(CompanionStreamsTest)
#include "CompanionStreamsTest.moc"
