// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include <unistd.h>

#include <csignal>
#include <optional>

#include "companion/export/ExportTimeline.h"
#include "tests/companion/StreamPlayer.h"

using std::chrono::milliseconds;
using ZorvaneClient::Companion::ExportTimeline;

namespace {

constexpr int clipMilliseconds = 4000;
/// With pictures that are not shown in the order in which they are decoded.
const QString h264 = "-c:v libx264 -preset veryfast -g 25 -pix_fmt yuv420p"_s;

/// Served in its own time, so that there is a middle to meet.
StreamScript slowScript(const FlvClip &clip)
{
    return with(StreamScript::of(clip.repeated(30), 2), &StreamScript::burst, 12'000);
}

QByteArray outputOf(const QString &program, const QStringList &arguments)
{
    QProcess process;
    process.setProcessChannelMode(QProcess::MergedChannels);
    process.start(program, QStringList{"-v", "error"} + arguments);
    process.closeWriteChannel();
    return process.waitForFinished(deadline) ? process.readAll() : "no end";
}

/// What programs other than ours find in a video file.
struct VideoFile {
    explicit VideoFile(const QString &path)
    {
        const auto root = QJsonDocument::fromJson(outputOf(
            "ffprobe", {"-count_frames", "-show_format", "-show_streams", "-of", "json", path}));
        seconds = root["format"]["duration"].toString().toDouble();
        for (const QJsonValue &stream : root["streams"].toArray())
            codecs << stream["codec_name"].toString();
        size = QSize(root["streams"][0]["width"].toInt(), root["streams"][0]["height"].toInt());
        pictures = root["streams"][0]["nb_read_frames"].toString().toInt();
        const QString backwards = "%1%+#5,0%+#5"_s.arg(seconds * 0.9);
        faults = outputOf("ffmpeg", {"-i", path, "-f", "null", "-"}) +
                 outputOf("ffprobe", {"-read_intervals", backwards, "-count_frames",
                                      "-show_entries", "format=", "-of", "csv=p=0", path})
                     .trimmed();
    }

    QStringList codecs; ///< video first
    QSize size;
    double seconds;
    int pictures;      ///< that can be decoded
    QByteArray faults; ///< what a decoder complains about, who goes back to the beginning too
};

/// The real player at an export into a folder of its own, and the server of its stream. Its
/// standard input stays open, and nothing is ever written to it.
class ExportProcess : public QProcess
{
public:
    /// `wrapper` is a command that runs the command that follows it.
    void begin(const StreamScript &script, int recorded = clipMilliseconds,
               const QString &container = "mp4"_s, const QByteArray &url = "/",
               const QStringList &wrapper = {})
    {
        server.setScript(script);
        if (!server.isListening())
            server.start();
        output.clear();
        QStringList command = wrapper;
        command << ZORVANE_BIN_DIR "/vlc-stream"
                << "export" << server.url(url) << container << QString::number(recorded) << target;
        start(command.first(), command.mid(1));
    }
    bool ends()
    {
        return QTest::qWaitFor([this] { return state() == NotRunning; }, deadline);
    }
    /// Exit code of a whole run.
    template <typename... Arguments>
    int run(const Arguments &...arguments)
    {
        begin(arguments...);
        return ends() && exitStatus() == NormalExit ? exitCode() : -1;
    }
    QList<QByteArray> lines()
    {
        output += readAllStandardOutput();
        return output.split('\n').mid(0, output.count('\n'));
    }
    /// Names of what is in the folder.
    QStringList files() const
    {
        return QDir(folder.path())
            .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
    }

    QTemporaryDir folder{QDir::current().filePath("films-XXXXXX"_s)};
    QString target = folder.filePath("127.0.0.1 - Tür 03.03.15.film"_s);
    StreamServer server;
    QByteArray output;
};

} // namespace

Q_DECLARE_METATYPE(ZorvaneClient::Tests::FlvClip)

/// An archive stream becomes a whole file, or none.
class CompanionExportTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        clip = Clips::quarters(QSize(160, 96), clipMilliseconds);
        toned = Clips::withTone(clipMilliseconds, "libmp3lame"_s, h264);
        QVERIFY(!clip.isEmpty() && !toned.isEmpty());
    }

    /// Times of packets in the file, by their stamps. "s" marks sound.
    void places_data()
    {
        // -1: not known
        rows<QString, int, QString>(
            {"stamps", "silence", "times"},
            {{"rare pictures, silence not known", "0 3000 6000 9000", -1, "0 40 3040 6040"},
             {"clock set back a little", "0 40 80 20 60 100 140", -1, "0 40 80 81 82 100 140"},
             {"sound of before the gap, late", "2000 2040 2080 72000 s2090 72040 s72030", 70'000,
              "0 40 80 120 90 160 150"},
             {"sound stops and comes back", "2000 s2010 3000 4000 5000 6000 7000 s7010", 0,
              "0 10 1000 2000 3000 4000 5000 5010"},
             {"more jumps than silence", "0 40 80 5080 5120 5160 10160", 7000,
              "0 40 80 120 160 200 3200"}});
    }

    void places()
    {
        const auto [stamps, silence, times] = row<QString, int, QString>();
        ExportTimeline timeline(milliseconds(20'000), silence < 0 ? std::optional<milliseconds>()
                                                                  : milliseconds(silence));
        QStringList found;
        for (const QString &stamp : stamps.split(' ')) {
            const bool sound = stamp.startsWith('s');
            found << QString::number(timeline.place(
                sound ? ExportTimeline::Sound : ExportTimeline::Video, stamp.mid(sound).toInt()));
        }
        QCOMPARE(found.join(' '), times);
    }

    void wholeFiles_data()
    {
        constexpr int gap = 60'000;
        const auto of = [](const QString &sound, const QString &encoder = h264) {
            return Clips::withTone(clipMilliseconds, sound, encoder);
        };
        const FlvClip moved = FlvClip{toned.header, {}}.then(toned, 1'900'000'000);
        const FlvClip gaps = clip.then(clip, gap).then(clip, 2000).then(clip, 10 * gap);
        const FlvClip other = Clips::quarters(QSize(160, 96), clipMilliseconds, h264);
        const FlvClip anew = {clip.header, clip.tags + clip.tags};
        rows<FlvClip, QString, int, int, QStringList>(
            {"stream", "container", "clips", "silence", "codecs"},
            {{"aac", of("aac"), "mp4", 1, 0, {"h264", "aac"}},
             {"sound that mp4 can't hold", of("pcm_s16le"), "mp4", 1, 0, {"h264"}},
             {"flv, avi", of("libmp3lame", Clips::flv), "avi", 1, 0, {"flv1", "mp3"}},
             {"a thousand pictures",
              of("libmp3lame", Clips::mpeg4).repeated(11),
              "avi",
              11,
              0,
              {"mpeg4", "mp3"}},
             {"stamps from anywhere", moved, "mp4", 1, 0, {"h264", "mp3"}},
             {"stamps jump over a gap", clip.then(clip, gap), "mp4", 2, gap, {"h264"}},
             {"stamps begin anew", anew, "mp4", 2, gap, {"h264"}},
             {"other parameter sets", clip.then(other), "mp4", 2, 0, {"h264"}},
             {"other parameter sets, avi", clip.then(other), "avi", 2, 0, {"h264"}},
             {"three gaps", gaps, "mp4", 4, 11 * gap + 2000, {"h264"}},
             {"jump without any reason", clip.then(clip, 100'000'000), "mp4", 2, 0, {"h264"}}});
    }

    void wholeFiles()
    {
        const auto [stream, container, clips, silence, codecs] =
            row<FlvClip, QString, int, int, QStringList>();
        const int recorded = clips * clipMilliseconds;
        ExportProcess exporter;
        const QByteArray end = QByteArray::number(qint64(1425373200000) + recorded + silence);
        QCOMPARE(exporter.run(StreamScript::of(stream, 0), recorded, container,
                              "/archive?startTime=1425373200000&endTime=" + end + "&q=2"),
                 0);
        QList<QByteArray> lines = exporter.lines();
        QCOMPARE(lines.takeFirst(), QByteArray("export-start"));
        QCOMPARE(lines.takeLast(), QByteArray("export-done"));
        QCOMPARE(lines.last(), QByteArray("export-percent 100"));
        QVERIFY(lines.size() > 20);
        int before = 0;
        for (const QByteArray &line : lines) {
            const int percent = line.mid(int(strlen("export-percent "))).toInt();
            QVERIFY2(line.startsWith("export-percent ") && percent > before, line);
            before = percent;
        }
        QCOMPARE(exporter.files(), QStringList{QFileInfo(exporter.target).fileName()});
        const VideoFile file(exporter.target);
        QCOMPARE(file.codecs, codecs);
        QCOMPARE(file.size, QSize(160, 96));
        QCOMPARE(file.pictures, clips * 100);
        QVERIFY2(qAbs(file.seconds - recorded / 1000.0) < 0.2 * clips,
                 QByteArray::number(file.seconds));
        QCOMPARE(file.faults, QByteArray());
    }

    void serverThatGoesOnAndOn()
    {
        ExportProcess exporter;
        QCOMPARE(exporter.run(with(StreamScript::of(toned.repeated(20), 0), &StreamScript::ending,
                                   StreamScript::Ending::Stall),
                              clipMilliseconds, "mp4"_s, "/?startTime=0&endTime=4000"),
                 0);
        QCOMPARE(exporter.lines().last(), QByteArray("export-done"));
        QVERIFY(VideoFile(exporter.target).seconds < 20);
    }

    void failures_data()
    {
        const StreamScript none;
        constexpr int length = clipMilliseconds;
        const StreamScript half =
            with(StreamScript::of(toned, 0), &StreamScript::stopAt, length / 2);
        const QByteArray garbage = garbled(QByteArray(200'000, '\0'), 1, 800'000, 0);
        const QByteArray torn = toned.repeated(10).bytes().chopped(toned.bytes().size() * 2 / 5);
        const FlvClip sound = Clips::made(Clips::tone + " -c:a libmp3lame -t 4");
        const FlvClip flv = Clips::quarters(QSize(160, 96), length, Clips::flv);
        // A unit that is longer than its picture, while the beginning still waits to be written.
        FlvClip damaged = clip;
        damaged.tags[20].bytes.replace(16, 1, "\x7F");
        rows<StreamScript, int, QString>(
            {"script", "recorded", "container"},
            {{"wrong arguments", none, length, "mkv"},
             {"server error", with(none, &StreamScript::status, 500), length, "avi"},
             {"garbage", with(none, &StreamScript::raw, garbage), length, "mp4"},
             {"no video", StreamScript::of(sound, 0), length, "mp4"},
             {"codec that mp4 can't hold", StreamScript::of(flv, 0), length, "mp4"},
             {"picture that avi can't hold", StreamScript::of(damaged, 0), length, "avi"},
             {"closed half-way", half, length, "mp4"},
             {"reset half-way", with(half, &StreamScript::ending, StreamScript::Ending::Reset),
              length, "mp4"},
             {"stalled", with(half, &StreamScript::ending, StreamScript::Ending::Stall), length,
              "mp4"},
             {"torn near the end", with(none, &StreamScript::raw, torn), 10 * length, "mp4"}});
    }

    /// The limit for a silent server is half a minute; that for pings of a player would be ten
    /// seconds.
    void failures()
    {
        const auto [script, recorded, container] = row<StreamScript, int, QString>();
        const bool wrong = container == "mkv"_s;
        QElapsedTimer time;
        time.start();
        ExportProcess exporter;
        QCOMPARE(exporter.run(script, recorded, container), wrong ? 2 : 1);
        QCOMPARE(exporter.lines().count("export-error"), 1);
        QVERIFY(!exporter.lines().contains("export-done"));
        QCOMPARE(exporter.files(), QStringList());
        QVERIFY(exporter.readAllStandardError().contains(wrong ? "vlc-stream export URL"
                                                               : "vlc-stream: "));
        QCOMPARE(time.elapsed() > 29'000, script.ending == StreamScript::Ending::Stall);
    }

    void cannotBeWritten_data()
    {
        rows<QString, QStringList>(
            {"place", "wrapper"},
            {{"no such folder", "missing/film", {}},
             {"a folder of the unfinished file's name", "film", {}},
             {"name too long", QString(300, 'n'), {}},
             {"folder is for reading only", "locked/film", {}},
             {"no room", "room", {"sh", "-c", "ulimit -f 40; exec \"$@\"", "sh"}}});
    }

    void cannotBeWritten()
    {
        const auto [place, wrapper] = row<QString, QStringList>();
        if (place.startsWith("locked"_s) && ::geteuid() == 0)
            QSKIP("nothing is for reading only to root");
        ExportProcess exporter;
        const QDir folder(exporter.folder.path());
        QVERIFY(folder.mkdir("locked"_s) && folder.mkdir("film.part"_s));
        QFile::setPermissions(folder.filePath("locked"_s), QFile::ReadOwner | QFile::ExeOwner);
        const QStringList before = exporter.files();
        exporter.target = folder.filePath(place);
        QCOMPARE(exporter.run(StreamScript::of(toned.repeated(4), 0), 4 * clipMilliseconds, "mp4"_s,
                              "/", wrapper),
                 1);
        QCOMPARE(exporter.lines().last(), QByteArray("export-error"));
        QCOMPARE(exporter.files(), before);
        QCOMPARE(exporter.readAllStandardError().contains("can't write"), !wrapper.isEmpty());
    }

    void endedFromOutside_data()
    {
        rows<int, StreamScript>({"signal", "script"},
                                {{"terminated", SIGTERM, slowScript(toned)},
                                 {"input closed", 0, slowScript(toned)},
                                 {"input closed, silent server", 0, stallScript(toned, 0)}});
    }

    void endedFromOutside()
    {
        const auto [signal, script] = row<int, StreamScript>();
        const int before = script.stopAt == 0 ? 1 : 4;
        ExportProcess exporter;
        exporter.begin(script, 30 * clipMilliseconds);
        QTRY_VERIFY_WITH_TIMEOUT(exporter.lines().size() >= before, deadline);
        QCOMPARE(exporter.files().size(), 1);
        if (signal != 0)
            ::kill(pid_t(exporter.processId()), signal);
        else
            exporter.closeWriteChannel();
        QTRY_VERIFY_WITH_TIMEOUT(exporter.state() == QProcess::NotRunning, 10'000);
        QCOMPARE(exporter.exitCode(), 1);
        QCOMPARE(exporter.lines().count("export-error"), signal != 0 ? 1 : 0);
        QCOMPARE(exporter.files(), QStringList());
    }

    void oldFileStaysUntilTheNewOneIsWhole()
    {
        ExportProcess exporter;
        QFile old(exporter.target);
        QVERIFY(old.open(QIODevice::WriteOnly) && old.write("old") == 3);
        old.close();
        exporter.begin(slowScript(toned), 30 * clipMilliseconds);
        QTRY_VERIFY_WITH_TIMEOUT(exporter.lines().size() > 3, deadline);

        // Nobody else writes there meanwhile.
        ExportProcess second;
        second.target = exporter.target;
        QCOMPARE(second.run(StreamScript::of(toned, 0)), 1);
        QCOMPARE(second.lines(), QList<QByteArray>{"export-error"});
        QCOMPARE(exporter.state(), QProcess::Running);
        exporter.kill();
        QVERIFY(exporter.ends());
        QCOMPARE(old.size(), qint64(3));
        QCOMPARE(exporter.files().size(), 2);

        // The next export of that name takes the place of both files.
        QCOMPARE(exporter.run(StreamScript::of(toned, 0)), 0);
        QCOMPARE(exporter.files(), QStringList{QFileInfo(exporter.target).fileName()});
        QCOMPARE(VideoFile(exporter.target).pictures, 100);
    }

private:
    FlvClip clip;
    FlvClip toned; ///< with sound
};

QTEST_GUILESS_MAIN(CompanionExportTest)
#include "CompanionExportTest.moc"
