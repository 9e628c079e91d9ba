// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include <vector>

#include "tests/companion/Clips.h"
#include "tests/support/PlayerProcess.h"
#include "tests/support/StreamServer.h"

namespace {

constexpr int deadline = 40'000;
/// The limit is ten seconds; the rest is for a machine under load.
constexpr int errorDeadline = 13'000;

StreamScript rawScript(const QByteArray &bytes)
{
    StreamScript script;
    script.raw = bytes;
    return script;
}

StreamScript statusScript(int status, const QByteArray &location = QByteArray())
{
    StreamScript script;
    script.status = status;
    script.location = location;
    return script;
}

StreamScript stallScript(const FlvClip &clip, int stopAt)
{
    StreamScript script;
    script.clip = clip;
    script.stopAt = stopAt;
    script.ending = StreamScript::Ending::Stall;
    return script;
}

QByteArray randomBytes(int count)
{
    return garbled(QByteArray(count, '\0'), 1, 4 * count, 0);
}

} // namespace

Q_DECLARE_METATYPE(ZorvaneClient::Tests::StreamScript)

/// Streams that are none, end badly or are damaged.
class CompanionFailuresTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        clip = Clips::quarters(QSize(160, 96), 1000);
        withTone = Clips::withTone(1000, "aac"_s);
        QVERIFY(!clip.isEmpty());
        QVERIFY(!withTone.isEmpty());
    }

    void neverAPicture_data()
    {
        StreamScript endlessGarbage = rawScript(clip.header + randomBytes(2'000'000));
        endlessGarbage.rawBytesPerSecond = 100'000;
        rows<StreamScript>({"script"},
                           {
                               {"redirect to itself", statusScript(302, "/flv/live")},
                               {"redirect to a file", statusScript(302, "file:///etc/hostname")},
                               {"header only", rawScript(clip.header)},
                               {"header, then silence", stallScript(clip, 0)},
                               {"garbage that goes on", endlessGarbage},
                               {"sound only, paced", StreamScript::of(Clips::toneOnly(15'000))},
                           });
    }

    void neverAPicture()
    {
        const auto [script] = row<StreamScript>();
        StreamServer server;
        QVERIFY(server.start(script));
        PlayerProcess player;
        QVERIFY(player.start(server.url("/flv/live")));
        QTRY_VERIFY_WITH_TIMEOUT(!player.isRunning(), deadline);
        QCOMPARE(player.exitCode(), 1);
        QCOMPARE(player.frames(), 0);
        QCOMPARE(player.lastState(), 7);
        QVERIFY(!player.states().contains(6));
        QVERIFY2(player.timeOfState(7) < errorDeadline, QByteArray::number(player.timeOfState(7)));
        QVERIFY(player.frameFile() ==
                QByteArray(PlayerProcess::frameFileBytes, PlayerProcess::untouched));
    }

    void otherSchemes_data()
    {
        rows<QByteArray>({"prefix"}, {
                                         {"file", QByteArray("file://")},
                                         {"subfile", QByteArray("subfile,,start,0,end,0,,://")},
                                     });
    }

    /// A stream address never reads a file of this machine.
    void otherSchemes()
    {
        const auto [prefix] = row<QByteArray>();
        QFile file("clip.flv"_s);
        QVERIFY(file.open(QIODevice::WriteOnly));
        file.write(clip.bytes());
        file.close();
        PlayerProcess player;
        QVERIFY(player.start(prefix + QFileInfo(file).absoluteFilePath().toUtf8()));
        QTRY_VERIFY_WITH_TIMEOUT(!player.isRunning(), deadline);
        QVERIFY(player.exitCode() == 1 || player.exitCode() == 2);
        QCOMPARE(player.frames(), 0);
    }

    void redirect()
    {
        StreamServer target;
        QVERIFY(target.start(StreamScript::of(clip)));
        StreamServer server;
        QVERIFY(server.start(statusScript(302, target.url("/elsewhere"))));
        PlayerProcess player;
        QVERIFY(player.start(server.url("/flv/live")));
        QTRY_VERIFY_WITH_TIMEOUT(player.frames() > 5, deadline);
    }

    void stall()
    {
        StreamServer server;
        QVERIFY(server.start(stallScript(clip, 600)));
        PlayerProcess player;
        QVERIFY(player.start(server.url("/flv/live")));
        QTRY_VERIFY_WITH_TIMEOUT(player.frames() > 5, deadline);
        QTRY_VERIFY_WITH_TIMEOUT(!player.isRunning(), deadline);
        QCOMPARE(player.exitCode(), 1);
        const QList<int> expected = {1, 2, 3, 2, 7};
        QCOMPARE(player.states(), expected);
        const qint64 stalled = player.timeOfState(7) - player.firstFrameTime() - 600;
        QVERIFY2(stalled > 9500 && stalled < errorDeadline, QByteArray::number(stalled));
    }

    void endsInTheMiddle_data()
    {
        StreamScript closed;
        closed.clip = clip;
        closed.stopAt = 600;
        StreamScript reset = closed;
        reset.ending = StreamScript::Ending::Reset;
        StreamScript shorter = closed;
        shorter.contentLength = clip.bytes().size();
        rows<StreamScript, bool>({"script", "isEnd"}, {
                                                          {"closed", closed, true},
                                                          {"reset", reset, true},
                                                          // the HTTP layer takes it for a close
                                                          {"shorter than told", shorter, false},
                                                      });
    }

    void endsInTheMiddle()
    {
        const auto [script, isEnd] = row<StreamScript, bool>();
        StreamServer server;
        QVERIFY(server.start(script));
        PlayerProcess player;
        QVERIFY(player.start(server.url("/flv/live")));
        QTRY_VERIFY_WITH_TIMEOUT(!player.isRunning(), deadline);
        QVERIFY(player.frames() > 5);
        QCOMPARE(player.states().contains(6), isEnd);
        QCOMPARE(player.lastState(), 7);
        QCOMPARE(player.exitCode(), isEnd ? 0 : 1);
    }

    /// Packets go on and on, and none makes a picture any more.
    void decoderGivesUp()
    {
        FlvClip broken = clip.repeated(15);
        for (FlvTag &tag : broken.tags) {
            constexpr int firstPayloadByte = 11 + 5;
            const bool isVideo = tag.bytes.at(0) == 9;
            if (isVideo && tag.milliseconds > 1000 && tag.bytes.size() > firstPayloadByte + 4)
                tag.bytes.replace(firstPayloadByte, tag.bytes.size() - firstPayloadByte - 4,
                                  QByteArray(tag.bytes.size() - firstPayloadByte - 4, '\x7F'));
        }
        StreamServer server;
        QVERIFY(server.start(StreamScript::of(broken)));
        PlayerProcess player;
        QVERIFY(player.start(server.url("/flv/live")));
        QTRY_VERIFY_WITH_TIMEOUT(player.frames() > 5, deadline);
        QTRY_VERIFY_WITH_TIMEOUT(!player.isRunning(), deadline);
        QCOMPARE(player.exitCode(), 1);
        QVERIFY(!player.states().contains(6));
        const qint64 blind = player.timeOfState(7) - player.firstFrameTime() - 1000;
        QVERIFY2(blind > 0 && blind < errorDeadline, QByteArray::number(blind));
    }

    void damagedStreams()
    {
        const FlvClip odd = Clips::quarters(QSize(161, 97), 600, Clips::Codec::Flv);
        const FlvClip sizes = clip.then(Clips::quarters(QSize(2048, 1536), 120)).then(clip);
        QList<QByteArray> streams;
        for (quint32 seed = 1; seed <= 16; ++seed) {
            const int damagedBytes = seed % 2 == 0 ? 10 : 1000;
            for (const FlvClip &whole : {clip, withTone, odd, sizes})
                streams.append(garbled(whole.bytes(), seed, damagedBytes, whole.header.size()));
        }
        playAll(streams);
    }

    void cutStreams()
    {
        const QByteArray whole = withTone.bytes();
        QList<QByteArray> streams;
        for (const int length : {1, 12, 15, 300})
            streams.append(whole.left(length));
        for (int length = 1000; length < whole.size(); length += static_cast<int>(whole.size()) / 8)
            streams.append(whole.left(length));
        playAll(streams);
    }

    void outputClosed()
    {
        StreamServer server;
        QVERIFY(server.start(StreamScript::of(clip.repeated(10))));
        QProcess reader;
        PlayerProcess player;
        player.pipeInto(&reader);
        reader.start("true"_s, QStringList());
        QVERIFY(player.start(server.url("/flv/live")));
        QTRY_VERIFY_WITH_TIMEOUT(!player.isRunning(), 5000);
        QVERIFY(player.exitCode() >= 0);
    }

private:
    /// Whatever the bytes are, each child says its 7 and ends by itself, with no more lines than
    /// the protocol has, and with a frame file of the old size.
    void playAll(const QList<QByteArray> &streams)
    {
        constexpr int atOnce = 8;
        StreamServer server;
        QVERIFY(server.start());
        for (int first = 0; first < streams.size(); first += atOnce) {
            std::vector<std::unique_ptr<PlayerProcess>> players;
            for (int i = first; i < qMin<int>(first + atOnce, streams.size()); ++i) {
                const QByteArray path = "/" + QByteArray::number(i);
                server.setScript(rawScript(streams.at(i)), path);
                players.push_back(std::make_unique<PlayerProcess>());
                QVERIFY(players.back()->start(server.url(path)));
                players.back()->send("volume 10");
            }
            for (const auto &player : players) {
                QTRY_VERIFY_WITH_TIMEOUT(!player->isRunning(), deadline);
                QVERIFY(player->exitCode() == 0 || player->exitCode() == 1);
                QCOMPARE(player->lastState(), 7);
                QCOMPARE(QFileInfo(player->frameFilePath()).size(),
                         qint64(PlayerProcess::frameFileBytes));
                QVERIFY(qint64(player->size().width()) * player->size().height() <= 3'145'728);
            }
        }
    }

    FlvClip clip;
    FlvClip withTone;
};

QTEST_GUILESS_MAIN(CompanionFailuresTest)
#include "CompanionFailuresTest.moc"
