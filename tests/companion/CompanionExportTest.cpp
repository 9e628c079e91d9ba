// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include <unistd.h>

#include <csignal>

#include "tests/companion/Clips.h"
#include "tests/companion/ExportProcess.h"
#include "tests/companion/VideoFile.h"
#include "tests/support/StreamServer.h"

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

FlvClip clipOf(const QString &encoders)
{
    return FlvClip::make(QString::fromLatin1("-f lavfi -i testsrc2=s=160x96:r=25:d=4 "
                                             "-f lavfi -i sine=frequency=440:r=44100:d=4 "
                                             "-pix_fmt yuv420p -g 25 %1")
                             .arg(encoders)
                             .split(QLatin1Char(' ')));
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
    void initTestCase()
    {
        clip = Clips::counting(clipMilliseconds);
        toned = clipOf("-c:v libx264 -preset veryfast -c:a libmp3lame");
        QVERIFY(!clip.isEmpty());
        QVERIFY(!toned.isEmpty());
    }

    void codecs_data()
    {
        QTest::addColumn<FlvClip>("stream");
        QTest::addColumn<QString>("container");
        QTest::addColumn<QString>("video");
        QTest::addColumn<QString>("sound");
        const auto row = [](const char *name, const FlvClip &stream, const char *container,
                            const char *video, const char *sound) {
            QTest::newRow(name) << stream << container << video << sound;
        };
        const QString h264 = "-c:v libx264 -preset veryfast -c:a %1"_s;
        row("aac", clipOf(h264.arg("aac")), "mp4", "h264", "aac");
        row("sound that mp4 can't hold", clipOf(h264.arg("pcm_s16le")), "mp4", "h264", "");
        row("flv, avi", clipOf("-c:v flv1 -c:a libmp3lame"), "avi", "flv1", "mp3");
        row("mpeg4, avi", clipOf("-c:v mpeg4 -strict -1 -flags:v -global_header -c:a libmp3lame"),
            "avi", "mpeg4", "mp3");
        FlvClip moved;
        moved.header = toned.header;
        row("stamps from anywhere", moved.then(toned, 1'900'000'000), "mp4", "h264", "mp3");
    }

    void codecs()
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

    void gaps_data()
    {
        constexpr int gap = 60'000;
        constexpr int two = 2 * clipMilliseconds;
        rows<FlvClip, int, int>(
            {"stream", "span", "recorded"},
            {
                {"stamps jump over it", clip.then(clip, gap), two + gap, two},
                {"stamps begin anew", beginningAnew(clip, clip), two + gap, two},
                {"three gaps", clip.then(clip, gap).then(clip, 2000).then(clip, 600'000),
                 2 * two + 11 * gap + 2000, 2 * two},
                {"jump without any reason", clip.then(clip, 100'000'000), two, two},
            });
    }

    void gaps()
    {
        const auto [stream, span, recorded] = row<FlvClip, int, int>();
        StreamServer server;
        QVERIFY(server.start(scriptOf(stream)));
        ExportProcess exporter;
        exportMp4(&exporter, spanUrl(server, span), recorded);
        QCOMPARE(exporter.lastLine(), QByteArray("export-done"));
        const VideoFile file = VideoFile::read(exporter.target());
        QVERIFY2(qAbs(file.seconds - recorded / 1000.0) < 1, QByteArray::number(file.seconds));
        QCOMPARE(file.pictures % clipPictures, 0);
        QCOMPARE(file.faults, QByteArray());
        QCOMPARE(Clips::countIn(pictureAt(exporter.target(), 0)), 0);
        const double last = file.seconds - 0.06;
        QCOMPARE(Clips::countIn(pictureAt(exporter.target(), last)), clipPictures - 1);
    }

    void serverThatGoesOnAndOn()
    {
        StreamScript script = scriptOf(toned.repeated(20));
        script.ending = StreamScript::Ending::Stall;
        StreamServer server;
        QVERIFY(server.start());
        server.setScript(script);
        ExportProcess exporter;
        exportMp4(&exporter, spanUrl(server, clipMilliseconds));
        QCOMPARE(exporter.lastLine(), QByteArray("export-done"));
        QCOMPARE(exporter.percents().last(), 100);
        QVERIFY(VideoFile::read(exporter.target()).seconds < 20);
    }

    void failures_data()
    {
        using Ending = StreamScript::Ending;
        StreamScript garbage;
        garbage.raw = garbled(QByteArray(200'000, '\0'), 1, 800'000, 0);
        StreamScript tornNearTheEnd = scriptOf(toned);
        tornNearTheEnd.raw = toned.repeated(10).bytes();
        tornNearTheEnd.raw.chop(toned.bytes().size() * 2 / 5);
        rows<StreamScript, int>(
            {"script", "recorded"},
            {
                {"server error", statusScript(500), clipMilliseconds},
                {"garbage", garbage, clipMilliseconds},
                {"no video", scriptOf(Clips::toneOnly(clipMilliseconds)), clipMilliseconds},
                {"codec that mp4 can't hold",
                 scriptOf(Clips::quarters(QSize(160, 96), clipMilliseconds, Clips::Codec::Flv)),
                 clipMilliseconds},
                {"closed half-way", brokenScript(toned, Ending::Close), clipMilliseconds},
                {"reset half-way", brokenScript(toned, Ending::Reset), clipMilliseconds},
                {"torn near the end", tornNearTheEnd, 10 * clipMilliseconds},
            });
    }

    void failures()
    {
        const auto [script, recorded] = row<StreamScript, int>();
        StreamServer server;
        QVERIFY(server.start(script));
        ExportProcess exporter;
        exportMp4(&exporter, server.url("/flv/archive"), recorded);
        QCOMPARE(exporter.exitCode(), 1);
        QCOMPARE(exporter.lines().count("export-error"), 1);
        QVERIFY(!exporter.lines().contains("export-done"));
        QCOMPARE(exporter.files(), QStringList());
        QVERIFY(exporter.errorOutput().startsWith("vlc-stream: "));
    }

    /// The limit for a silent server is half a minute; that for pings of a player would be ten
    /// seconds.
    void stallWithoutAnyPing()
    {
        StreamServer server;
        QVERIFY(server.start(brokenScript(toned, StreamScript::Ending::Stall)));
        ExportProcess exporter;
        QElapsedTimer time;
        time.start();
        exportMp4(&exporter, server.url("/"));
        QVERIFY2(time.elapsed() > 29'000, QByteArray::number(time.elapsed()));
        QCOMPARE(exporter.lastLine(), QByteArray("export-error"));
        QCOMPARE(exporter.files(), QStringList());
    }

    void wrongArguments_data()
    {
        rows<QStringList>(
            {"arguments"},
            {
                {"no address", QStringList{"", "mp4", "4000", "/tmp/film"}},
                {"other container", QStringList{"http://host/", "mkv", "4000", "/tmp/film"}},
                {"length is no number", QStringList{"http://host/", "mp4", "4s", "/tmp/film"}},
                {"path not absolute", QStringList{"http://host/", "mp4", "4000", "film"}},
            });
    }

    void wrongArguments()
    {
        const auto [arguments] = row<QStringList>();
        ExportProcess exporter;
        exporter.startWithArguments(QStringList{"export"} + arguments);
        QTRY_VERIFY_WITH_TIMEOUT(!exporter.isRunning(), deadline);
        QCOMPARE(exporter.exitCode(), 2);
        QCOMPARE(exporter.lines(), QList<QByteArray>{"export-error"});
        QVERIFY(exporter.errorOutput().contains("vlc-stream export URL"));
    }

    void placesThatCannotBeWritten_data()
    {
        rows<QString>({"place"}, {
                                     {"no such folder", "missing/film"},
                                     {"a folder of the unfinished file's name", "film"},
                                     {"name too long", QString(300, QLatin1Char('n'))},
                                     {"folder is for reading only", "locked/film"},
                                 });
    }

    void placesThatCannotBeWritten()
    {
        const auto [place] = row<QString>();
        if (place.startsWith("locked"_s) && ::geteuid() == 0)
            QSKIP("nothing is for reading only to root");
        StreamServer server;
        QVERIFY(server.start(scriptOf(toned)));
        ExportProcess exporter;
        const QDir folder(exporter.folder());
        QVERIFY(folder.mkdir("locked"_s) && folder.mkdir("film.part"_s));
        QFile::setPermissions(folder.filePath("locked"_s), QFile::ReadOwner | QFile::ExeOwner);
        const QStringList before = exporter.files();
        exporter.setTarget(folder.filePath(place));
        exportMp4(&exporter, server.url("/"));
        QCOMPARE(exporter.exitCode(), 1);
        QCOMPARE(exporter.lastLine(), QByteArray("export-error"));
        QCOMPARE(exporter.files(), before);
    }

    void diskFull_data()
    {
        rows<QString, QString>(
            {"command", "probe"},
            {
                {"limit of the process", "ulimit -f 40; exec \"$@\"", "ulimit -f 40"},
                // What is mounted there goes with the process.
                {"small file system", "mount -t tmpfs -o size=40k none . && \"$@\"; echo $?; ls -A",
                 "mount -t tmpfs -o size=40k none ."},
            });
    }

    void diskFull()
    {
        const auto [command, probe] = row<QString, QString>();
        const bool mounts = command.startsWith("mount"_s);
        const QStringList own = mounts ? QStringList{"unshare", "-m"} : QStringList{};
        ExportProcess exporter;
        const QString enter = "cd '%1' && "_s.arg(exporter.folder());
        const QStringList shell = own + QStringList{"sh", "-c"};
        const QStringList tryOut = shell + QStringList{enter + probe};
        if (QProcess::execute(tryOut.first(), tryOut.mid(1)) != 0)
            QSKIP("not allowed here");
        StreamServer server;
        QVERIFY(server.start(scriptOf(toned.repeated(4))));
        exporter.start(server.url("/"), "mp4"_s, 4 * clipMilliseconds,
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

    void endedFromOutside_data()
    {
        rows<int, bool>({"signal", "hasPictures"}, {
                                                       {"terminated", SIGTERM, true},
                                                       {"input closed", 0, true},
                                                       {"input closed, silent server", 0, false},
                                                   });
    }

    void endedFromOutside()
    {
        const auto [signal, hasPictures] = row<int, bool>();
        StreamScript script = slowScript(toned);
        if (!hasPictures) {
            script.stopAt = 0;
            script.ending = StreamScript::Ending::Stall;
        }
        StreamServer server;
        QVERIFY(server.start(script));
        ExportProcess exporter;
        exporter.start(server.url("/"), "mp4"_s, 30 * clipMilliseconds);
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

    void oldFileStaysUntilTheNewOneIsWhole()
    {
        StreamServer server;
        ExportProcess exporter;
        QFile old(exporter.target());
        QVERIFY(old.open(QIODevice::WriteOnly));
        old.write("old");
        old.close();
        startSlowExport(&server, &exporter);
        exporter.signal(SIGKILL);
        QTRY_VERIFY_WITH_TIMEOUT(!exporter.isRunning(), deadline);
        QCOMPARE(QFileInfo(exporter.target()).size(), qint64(3));
        QCOMPARE(exporter.files().size(), 2);

        // The next export of that name takes the place of both files.
        server.setScript(scriptOf(toned));
        exportMp4(&exporter, server.url("/"));
        QCOMPARE(exporter.files(), QStringList{QFileInfo(exporter.target()).fileName()});
        QCOMPARE(VideoFile::read(exporter.target()).pictures, clipPictures);
    }

    void oneTargetForTwo()
    {
        StreamServer server;
        ExportProcess exporter;
        startSlowExport(&server, &exporter);
        ExportProcess second;
        second.setTarget(exporter.target());
        exportMp4(&second, server.url("/"));
        QCOMPARE(second.lines(), QList<QByteArray>{"export-error"});
        QVERIFY(exporter.isRunning());
        QCOMPARE(exporter.files().size(), 1);
    }

private:
    /// Runs the exporter to its end.

    void exportMp4(ExportProcess *exporter, const QByteArray &url, int recorded = clipMilliseconds)
    {
        exporter->start(url, "mp4"_s, recorded);
        QTRY_VERIFY_WITH_TIMEOUT(!exporter->isRunning(), deadline);
    }

    /// Starts on what takes long, until the middle.

    void startSlowExport(StreamServer *server, ExportProcess *exporter)
    {
        QVERIFY(server->start(slowScript(toned)));
        exporter->start(server->url("/"), "mp4"_s, 30 * clipMilliseconds);
        QTRY_VERIFY_WITH_TIMEOUT(exporter->percents().size() > 2, deadline);
    }

    FlvClip clip;  ///< each picture tells its number
    FlvClip toned; ///< with sound
};

QTEST_GUILESS_MAIN(CompanionExportTest)
#include "CompanionExportTest.moc"
