// SPDX-License-Identifier: MIT
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QtTest>

#include <unistd.h>

#include <algorithm>
#include <csignal>

#include "tests/companion/Clips.h"
#include "tests/companion/ExportProcess.h"
#include "tests/companion/VideoFile.h"
#include "tests/support/StreamServer.h"

using namespace ZorvaneClient::Tests;

namespace {

constexpr int deadline = 60'000;
constexpr int clipMilliseconds = 4000;
constexpr int clipPictures = 100;

StreamScript scriptOf(const FlvClip &clip)
{
    StreamScript script;
    script.clip = clip;
    script.speed = 0;
    return script;
}

StreamScript statusScript(int status)
{
    StreamScript script;
    script.status = status;
    return script;
}

/// Ends in the middle of a clip.
StreamScript brokenScript(const FlvClip &clip, StreamScript::Ending ending, qint64 toldBytes = -1)
{
    StreamScript script = scriptOf(clip);
    script.stopAt = clipMilliseconds / 2;
    script.ending = ending;
    script.contentLength = toldBytes;
    return script;
}

/// Served in its own time, so that there is a middle to meet.
StreamScript slowScript(const FlvClip &clip)
{
    StreamScript script = scriptOf(clip.repeated(30));
    script.speed = 2;
    script.burst = 3 * clipMilliseconds;
    return script;
}

FlvClip clipOf(const char *encoders)
{
    return FlvClip::make(QString::fromLatin1("-f lavfi -i testsrc2=s=160x96:r=25:d=4 "
                                             "-f lavfi -i sine=frequency=440:r=44100:d=4 "
                                             "-pix_fmt yuv420p -g 25 %1")
                             .arg(QLatin1String(encoders))
                             .split(QLatin1Char(' ')));
}

/// All stamps later.
FlvClip moved(const FlvClip &clip, int milliseconds)
{
    FlvClip none;
    none.header = clip.header;
    return none.then(clip, milliseconds);
}

/// As `then()`, but the second clip keeps its own stamps.
FlvClip beginningAnew(const FlvClip &first, const FlvClip &second)
{
    FlvClip joined = first;
    joined.tags += second.tags;
    return joined;
}

QByteArray spanUrl(const StreamServer &server, int spanMilliseconds)
{
    const QByteArray start = "1425373200000";
    return server.url("/flv/archive?server=1&startTime=" + start + "&endTime=" +
                      QByteArray::number(start.toLongLong() + spanMilliseconds) + "&q=2");
}

} // namespace

Q_DECLARE_METATYPE(ZorvaneClient::Tests::StreamScript)
Q_DECLARE_METATYPE(ZorvaneClient::Tests::FlvClip)

/// An archive stream becomes a whole file, or none.
class CompanionExportTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void codecs_data();
    void codecs();
    void gaps_data();
    void gaps();
    void otherSizeAfterAGap();
    void serverThatGoesOnAndOn();
    void failures_data();
    void failures();
    void stallWithoutAnyPing();
    void wrongArguments_data();
    void wrongArguments();
    void placesThatCannotBeWritten_data();
    void placesThatCannotBeWritten();
    void diskFull_data();
    void diskFull();
    void killLeavesNoFileOfTheName();
    void endedFromOutside_data();
    void endedFromOutside();
    void oldFileStaysUntilTheNewOneIsWhole();
    void oneTargetForTwo();

private:
    FlvClip clip;  ///< each picture tells its number
    FlvClip toned; ///< with sound
};

void CompanionExportTest::initTestCase()
{
    clip = Clips::counting(clipMilliseconds);
    toned = clipOf("-c:v libx264 -preset veryfast -c:a libmp3lame");
    QVERIFY(!clip.isEmpty());
    QVERIFY(!toned.isEmpty());
}

void CompanionExportTest::codecs_data()
{
    QTest::addColumn<FlvClip>("stream");
    QTest::addColumn<QString>("container");
    QTest::addColumn<QString>("video");
    QTest::addColumn<QString>("sound");
    QTest::newRow("no sound") << clip << "mp4"
                              << "h264"
                              << "";
    QTest::newRow("mp3") << toned << "mp4"
                         << "h264"
                         << "mp3";
    QTest::newRow("aac") << clipOf("-c:v libx264 -preset veryfast -c:a aac") << "mp4"
                         << "h264"
                         << "aac";
    QTest::newRow("sound that mp4 can't hold")
        << clipOf("-c:v libx264 -preset veryfast -c:a pcm_s16le") << "mp4"
        << "h264"
        << "";
    QTest::newRow("flv, avi") << clipOf("-c:v flv1 -c:a libmp3lame") << "avi"
                              << "flv1"
                              << "mp3";
    QTest::newRow("mpeg4, avi") << clipOf("-c:v mpeg4 -strict -1 -flags:v -global_header -c:a "
                                          "libmp3lame")
                                << "avi"
                                << "mpeg4"
                                << "mp3";
    QTest::newRow("h264, avi") << toned << "avi"
                               << "h264"
                               << "mp3";
    QTest::newRow("stamps from anywhere") << moved(toned, 1'900'000'000) << "mp4"
                                          << "h264"
                                          << "mp3";
}

void CompanionExportTest::codecs()
{
    QFETCH(FlvClip, stream);
    QFETCH(QString, container);
    StreamServer server;
    QVERIFY(server.start(scriptOf(stream)));
    ExportProcess exporter;
    exporter.start(spanUrl(server, clipMilliseconds), container, clipMilliseconds);
    QTRY_VERIFY_WITH_TIMEOUT(!exporter.isRunning(), deadline);
    QCOMPARE(exporter.exitCode(), 0);
    QCOMPARE(exporter.lines().first(), QByteArray("export-start"));
    QCOMPARE(exporter.lastLine(), QByteArray("export-done"));
    const QList<int> percents = exporter.percents();
    QVERIFY(percents.size() > 20);
    QVERIFY(std::is_sorted(percents.begin(), percents.end(), std::less_equal<int>()));
    QVERIFY(percents.first() > 0);
    QCOMPARE(percents.last(), 100);
    QCOMPARE(exporter.lines().size(), percents.size() + 2);

    QCOMPARE(exporter.files(), QStringList{QFileInfo(exporter.target()).fileName()});
    const VideoFile file = VideoFile::read(exporter.target());
    QTEST(file.videoCodec, "video");
    QTEST(file.soundCodec, "sound");
    QCOMPARE(file.size, QSize(160, 96));
    QCOMPARE(file.pictures, clipPictures);
    QVERIFY2(qAbs(file.seconds - 4) < 0.2, QByteArray::number(file.seconds));
    QCOMPARE(file.faults, QByteArray());
}

void CompanionExportTest::gaps_data()
{
    constexpr int gap = 60'000;
    constexpr int two = 2 * clipMilliseconds;
    QTest::addColumn<FlvClip>("stream");
    QTest::addColumn<int>("span");
    QTest::addColumn<int>("recorded");
    QTest::newRow("stamps jump over it") << clip.then(clip, gap) << two + gap << two;
    QTest::newRow("stamps run on") << clip.then(clip) << two + gap << two;
    QTest::newRow("stamps begin anew") << beginningAnew(clip, clip) << two + gap << two;
    QTest::newRow("span not known") << clip.then(clip, gap) << -1 << two;
    QTest::newRow("three gaps") << clip.then(clip, gap).then(clip, 2000).then(clip, 600'000)
                                << 2 * two + 11 * gap + 2000 << 2 * two;
    QTest::newRow("pictures lost within a record")
        << clip.then(clip, 5000) << two + 5000 << two + 5000;
    QTest::newRow("lost in one, then a gap")
        << clip.then(clip, 5000).then(clip, gap) << 3 * clipMilliseconds + 5000 + gap
        << 3 * clipMilliseconds + 5000;
    QTest::newRow("jump without any reason") << clip.then(clip, 100'000'000) << two << two;
}

void CompanionExportTest::gaps()
{
    QFETCH(FlvClip, stream);
    QFETCH(int, span);
    QFETCH(int, recorded);
    StreamServer server;
    QVERIFY(server.start(scriptOf(stream)));
    ExportProcess exporter;
    exporter.start(span < 0 ? server.url("/flv/archive") : spanUrl(server, span),
                   QStringLiteral("mp4"), recorded);
    QTRY_VERIFY_WITH_TIMEOUT(!exporter.isRunning(), deadline);
    QCOMPARE(exporter.lastLine(), QByteArray("export-done"));
    const VideoFile file = VideoFile::read(exporter.target());
    QVERIFY2(qAbs(file.seconds - recorded / 1000.0) < 1, QByteArray::number(file.seconds));
    QCOMPARE(file.pictures % clipPictures, 0);
    QCOMPARE(file.faults, QByteArray());
    QCOMPARE(Clips::countIn(pictureAt(exporter.target(), 0)), 0);
    const double last = file.seconds - 0.06;
    QCOMPARE(Clips::countIn(pictureAt(exporter.target(), last)), clipPictures - 1);
}

void CompanionExportTest::otherSizeAfterAGap()
{
    const FlvClip other = Clips::quarters(QSize(320, 192), clipMilliseconds);
    StreamServer server;
    QVERIFY(server.start(scriptOf(clip.then(other, 10'000))));
    ExportProcess exporter;
    exporter.start(server.url("/"), QStringLiteral("mp4"), 2 * clipMilliseconds);
    QTRY_VERIFY_WITH_TIMEOUT(!exporter.isRunning(), deadline);
    QCOMPARE(exporter.lastLine(), QByteArray("export-done"));
    QCOMPARE(VideoFile::read(exporter.target()).faults, QByteArray());
    QCOMPARE(Clips::countIn(pictureAt(exporter.target(), 0)), 0);
    QCOMPARE(Clips::faultInQuarters(pictureAt(exporter.target(), 6)), QString());
}

void CompanionExportTest::serverThatGoesOnAndOn()
{
    StreamScript script = scriptOf(toned.repeated(20));
    script.ending = StreamScript::Ending::Stall;
    StreamServer server;
    QVERIFY(server.start());
    server.setScript(script);
    ExportProcess exporter;
    exporter.start(spanUrl(server, clipMilliseconds), QStringLiteral("mp4"), clipMilliseconds);
    QTRY_VERIFY_WITH_TIMEOUT(!exporter.isRunning(), deadline);
    QCOMPARE(exporter.lastLine(), QByteArray("export-done"));
    QCOMPARE(exporter.percents().last(), 100);
    QVERIFY(VideoFile::read(exporter.target()).seconds < 20);
}

void CompanionExportTest::failures_data()
{
    using Ending = StreamScript::Ending;
    StreamScript garbage;
    garbage.raw = garbled(QByteArray(200'000, '\0'), 1, 800'000, 0);
    StreamScript tornNearTheEnd = scriptOf(toned);
    tornNearTheEnd.raw = toned.repeated(10).bytes();
    tornNearTheEnd.raw.chop(toned.bytes().size() * 2 / 5);

    QTest::addColumn<StreamScript>("script");
    QTest::addColumn<QString>("container");
    QTest::addColumn<int>("recorded");
    QTest::newRow("refused") << statusScript(403) << "mp4" << clipMilliseconds;
    QTest::newRow("not found") << statusScript(404) << "mp4" << clipMilliseconds;
    QTest::newRow("server error") << statusScript(500) << "mp4" << clipMilliseconds;
    QTest::newRow("garbage") << garbage << "mp4" << clipMilliseconds;
    QTest::newRow("no video") << scriptOf(Clips::toneOnly(clipMilliseconds)) << "mp4"
                              << clipMilliseconds;
    QTest::newRow("codec that mp4 can't hold")
        << scriptOf(Clips::quarters(QSize(160, 96), clipMilliseconds, Clips::Codec::Flv)) << "mp4"
        << clipMilliseconds;
    QTest::newRow("closed half-way")
        << brokenScript(toned, Ending::Close) << "mp4" << clipMilliseconds;
    QTest::newRow("reset half-way")
        << brokenScript(toned, Ending::Reset) << "avi" << clipMilliseconds;
    QTest::newRow("shorter than told")
        << brokenScript(toned, Ending::Close, toned.bytes().size()) << "mp4" << clipMilliseconds;
    QTest::newRow("torn near the end") << tornNearTheEnd << "mp4" << 10 * clipMilliseconds;
}

void CompanionExportTest::failures()
{
    QFETCH(StreamScript, script);
    QFETCH(QString, container);
    QFETCH(int, recorded);
    StreamServer server;
    QVERIFY(server.start(script));
    ExportProcess exporter;
    exporter.start(server.url("/flv/archive"), container, recorded);
    QTRY_VERIFY_WITH_TIMEOUT(!exporter.isRunning(), deadline);
    QCOMPARE(exporter.exitCode(), 1);
    QCOMPARE(exporter.lines().count("export-error"), 1);
    QCOMPARE(exporter.lastLine(), QByteArray("export-error"));
    QVERIFY(!exporter.lines().contains("export-done"));
    QCOMPARE(exporter.files(), QStringList());
    QVERIFY(exporter.errorOutput().startsWith("vlc-stream: "));
}

/// The limit for a silent server is half a minute; that for pings of a player would be ten
/// seconds.
void CompanionExportTest::stallWithoutAnyPing()
{
    StreamServer server;
    QVERIFY(server.start(brokenScript(toned, StreamScript::Ending::Stall)));
    ExportProcess exporter;
    QElapsedTimer time;
    time.start();
    exporter.start(server.url("/"), QStringLiteral("mp4"), clipMilliseconds);
    QTRY_VERIFY_WITH_TIMEOUT(!exporter.isRunning(), deadline);
    QVERIFY2(time.elapsed() > 29'000, QByteArray::number(time.elapsed()));
    QCOMPARE(exporter.lastLine(), QByteArray("export-error"));
    QCOMPARE(exporter.files(), QStringList());
}

void CompanionExportTest::wrongArguments_data()
{
    QTest::addColumn<QStringList>("arguments");
    QTest::newRow("none") << QStringList{};
    QTest::newRow("no address") << QStringList{"", "mp4", "4000", "/tmp/film"};
    QTest::newRow("other container") << QStringList{"http://host/", "mkv", "4000", "/tmp/film"};
    QTest::newRow("no length") << QStringList{"http://host/", "mp4", "0", "/tmp/film"};
    QTest::newRow("length is no number") << QStringList{"http://host/", "mp4", "4s", "/tmp/film"};
    QTest::newRow("path not absolute") << QStringList{"http://host/", "mp4", "4000", "film"};
}

void CompanionExportTest::wrongArguments()
{
    QFETCH(QStringList, arguments);
    ExportProcess exporter;
    exporter.startWithArguments(QStringList{"export"} + arguments);
    QTRY_VERIFY_WITH_TIMEOUT(!exporter.isRunning(), deadline);
    QCOMPARE(exporter.exitCode(), 2);
    QCOMPARE(exporter.lines(), QList<QByteArray>{"export-error"});
    QVERIFY(exporter.errorOutput().contains("vlc-stream export URL"));
}

void CompanionExportTest::placesThatCannotBeWritten_data()
{
    QTest::addColumn<QString>("place");
    QTest::newRow("no such folder") << "missing/film";
    QTest::newRow("a file for a folder") << "file/film";
    QTest::newRow("a folder of that name") << "folder";
    QTest::newRow("a folder of the unfinished file's name") << "film";
    QTest::newRow("name too long") << QString(300, QLatin1Char('n'));
    QTest::newRow("folder is for reading only") << "locked/film";
}

void CompanionExportTest::placesThatCannotBeWritten()
{
    QFETCH(QString, place);
    if (place.startsWith(QStringLiteral("locked")) && ::geteuid() == 0)
        QSKIP("nothing is for reading only to root");
    StreamServer server;
    QVERIFY(server.start(scriptOf(toned)));
    ExportProcess exporter;
    const QDir folder(exporter.folder());
    QVERIFY(folder.mkdir(QStringLiteral("folder")) && folder.mkdir(QStringLiteral("locked")));
    QVERIFY(folder.mkdir(QStringLiteral("film.part")));
    QFile::setPermissions(folder.filePath(QStringLiteral("locked")),
                          QFile::ReadOwner | QFile::ExeOwner);
    QFile file(folder.filePath(QStringLiteral("file")));
    QVERIFY(file.open(QIODevice::WriteOnly));
    const QStringList before = exporter.files();
    exporter.setTarget(folder.filePath(place));
    exporter.start(server.url("/"), QStringLiteral("mp4"), clipMilliseconds);
    QTRY_VERIFY_WITH_TIMEOUT(!exporter.isRunning(), deadline);
    QCOMPARE(exporter.exitCode(), 1);
    QCOMPARE(exporter.lastLine(), QByteArray("export-error"));
    QCOMPARE(exporter.files(), before);
}

void CompanionExportTest::diskFull_data()
{
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("probe");
    QTest::newRow("limit of the process") << "ulimit -f 40; exec \"$@\""
                                          << "ulimit -f 40";
    // What is mounted there goes with the process.
    QTest::newRow("small file system")
        << "mount -t tmpfs -o size=40k none . && \"$@\"; echo $?; ls -A"
        << "mount -t tmpfs -o size=40k none .";
}

void CompanionExportTest::diskFull()
{
    QFETCH(QString, command);
    QFETCH(QString, probe);
    const bool mounts = command.startsWith(QStringLiteral("mount"));
    const QStringList own = mounts ? QStringList{"unshare", "-m"} : QStringList{};
    ExportProcess exporter;
    const QString enter = QStringLiteral("cd '%1' && ").arg(exporter.folder());
    const QStringList shell = own + QStringList{"sh", "-c"};
    const QStringList tryOut = shell + QStringList{enter + probe};
    if (QProcess::execute(tryOut.first(), tryOut.mid(1)) != 0)
        QSKIP("not allowed here");
    StreamServer server;
    QVERIFY(server.start(scriptOf(toned.repeated(4))));
    exporter.start(server.url("/"), QStringLiteral("mp4"), 4 * clipMilliseconds,
                   shell + QStringList{enter + command, "sh"});
    QTRY_VERIFY_WITH_TIMEOUT(!exporter.isRunning(), deadline);
    QVERIFY(exporter.errorOutput().contains("can't write"));
    QList<QByteArray> lines = exporter.lines();
    if (mounts)
        QCOMPARE(lines.takeLast(), QByteArray("1")); // and no file after it
    else
        QCOMPARE(exporter.exitCode(), 1);
    QCOMPARE(lines.last(), QByteArray("export-error"));
    QCOMPARE(exporter.files(), QStringList());
}

void CompanionExportTest::killLeavesNoFileOfTheName()
{
    StreamServer server;
    QVERIFY(server.start(slowScript(toned)));
    ExportProcess exporter;
    exporter.start(server.url("/"), QStringLiteral("mp4"), 30 * clipMilliseconds);
    QTRY_VERIFY_WITH_TIMEOUT(exporter.percents().size() > 2, deadline);
    exporter.signal(SIGKILL);
    QTRY_VERIFY_WITH_TIMEOUT(!exporter.isRunning(), deadline);
    QVERIFY(!QFileInfo::exists(exporter.target()));
    QCOMPARE(exporter.files().size(), 1);

    // The next export of that name takes the place of what is left.
    server.setScript(scriptOf(toned));
    exporter.start(server.url("/"), QStringLiteral("mp4"), clipMilliseconds);
    QTRY_VERIFY_WITH_TIMEOUT(!exporter.isRunning(), deadline);
    QCOMPARE(exporter.lastLine(), QByteArray("export-done"));
    QCOMPARE(exporter.files(), QStringList{QFileInfo(exporter.target()).fileName()});
    QCOMPARE(VideoFile::read(exporter.target()).pictures, clipPictures);
}

void CompanionExportTest::endedFromOutside_data()
{
    QTest::addColumn<int>("signal");
    QTest::addColumn<bool>("hasPictures");
    QTest::newRow("terminated") << SIGTERM << true;
    QTest::newRow("interrupted") << SIGINT << true;
    QTest::newRow("input closed") << 0 << true;
    QTest::newRow("terminated, silent server") << SIGTERM << false;
    QTest::newRow("input closed, silent server") << 0 << false;
}

void CompanionExportTest::endedFromOutside()
{
    QFETCH(int, signal);
    QFETCH(bool, hasPictures);
    StreamScript script = slowScript(toned);
    if (!hasPictures) {
        script.stopAt = 0;
        script.ending = StreamScript::Ending::Stall;
    }
    StreamServer server;
    QVERIFY(server.start(script));
    ExportProcess exporter;
    exporter.start(server.url("/"), QStringLiteral("mp4"), 30 * clipMilliseconds);
    QTRY_VERIFY_WITH_TIMEOUT(exporter.lines().size() > (hasPictures ? 3 : 0), deadline);
    QCOMPARE(exporter.files().size(), 1);
    if (signal != 0)
        exporter.signal(signal);
    else
        exporter.closeInput();
    QTRY_VERIFY_WITH_TIMEOUT(!exporter.isRunning(), 10'000);
    QCOMPARE(exporter.exitCode(), 1);
    QCOMPARE(exporter.lines().count("export-error"), signal != 0 ? 1 : 0);
    QCOMPARE(exporter.files(), QStringList());
}

void CompanionExportTest::oldFileStaysUntilTheNewOneIsWhole()
{
    StreamServer server;
    QVERIFY(server.start(slowScript(toned)));
    ExportProcess exporter;
    QFile old(exporter.target());
    QVERIFY(old.open(QIODevice::WriteOnly));
    old.write("old");
    old.close();
    exporter.start(server.url("/"), QStringLiteral("mp4"), 30 * clipMilliseconds);
    QTRY_VERIFY_WITH_TIMEOUT(exporter.percents().size() > 2, deadline);
    QCOMPARE(QFileInfo(exporter.target()).size(), qint64(3));
    exporter.signal(SIGTERM);
    QTRY_VERIFY_WITH_TIMEOUT(!exporter.isRunning(), deadline);
    QCOMPARE(QFileInfo(exporter.target()).size(), qint64(3));

    server.setScript(scriptOf(toned));
    exporter.start(server.url("/"), QStringLiteral("mp4"), clipMilliseconds);
    QTRY_VERIFY_WITH_TIMEOUT(!exporter.isRunning(), deadline);
    QCOMPARE(VideoFile::read(exporter.target()).pictures, clipPictures);
}

void CompanionExportTest::oneTargetForTwo()
{
    StreamServer server;
    QVERIFY(server.start(slowScript(toned)));
    ExportProcess exporter;
    exporter.start(server.url("/"), QStringLiteral("mp4"), 30 * clipMilliseconds);
    QTRY_VERIFY_WITH_TIMEOUT(exporter.percents().size() > 2, deadline);
    ExportProcess second;
    second.setTarget(exporter.target());
    second.start(server.url("/"), QStringLiteral("mp4"), 30 * clipMilliseconds);
    QTRY_VERIFY_WITH_TIMEOUT(!second.isRunning(), deadline);
    QCOMPARE(second.lines(), QList<QByteArray>{"export-error"});
    QVERIFY(exporter.isRunning());
    QCOMPARE(exporter.files().size(), 1);
}

QTEST_GUILESS_MAIN(CompanionExportTest)
#include "CompanionExportTest.moc"
