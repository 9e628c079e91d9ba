// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "API/Camera.h"
#include "App/Environment.h"
#include "GUI/Player/VideoWidget.h"
#include "tests/GUI/ArchiveWorld.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ScriptedChild.h"
#include "tests/support/StreamServer.h"

using GUI::Player::VideoWidget;

namespace {

using Records = QList<API::ArchiveRecord>;

const QDate day(2015, 3, 3);
constexpr int deadline = 30'000;

QDateTime at(const QString &time)
{
    return QDateTime(day, QTime::fromString(time, "hh:mm:ss"_s));
}

Records recordsOf(const QStringList &spans)
{
    Records records;
    for (const QString &span : spans)
        records.append({at(span.section(QLatin1Char('-'), 0, 0)), at(span.section('-', 1, 1))});
    return records;
}

QString filmPath(const QString &name)
{
    return QDir(QStandardPaths::writableLocation(QStandardPaths::MoviesLocation))
        .absoluteFilePath(name);
}

/// What a tile tells of its exports, in words and in order.
class ExportEvents
{
public:
    explicit ExportEvents(VideoWidget &tile)
    {
        QObject::connect(&tile, &VideoWidget::exportStarted, &context,
                         [this] { events << "started"_s; });
        QObject::connect(&tile, &VideoWidget::exportPercentDone, &context,
                         [this](int percent) { events << QString::number(percent); });
        QObject::connect(&tile, &VideoWidget::exportDone, &context,
                         [this](const QString &path) { events << "done " + path; });
        QObject::connect(&tile, &VideoWidget::exportError, &context,
                         [this](const QString &path) { events << "error " + path; });
    }

    QStringList events;

private:
    QObject context;
};

} // namespace

/// Part of the archive becomes a file, by a child of its own.
class TileExportTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(world.start()); }

    void files_data()
    {
        rows<QString, QString>({"vcodec", "container"}, {
                                                            {"h264", "h264", "mp4"},
                                                            {"capitals", "H264", "avi"},
                                                            {"mpeg4", "mpeg4", "avi"},
                                                            {"not known", "", "avi"},
                                                        });
    }

    void files()
    {
        const auto [vcodec, container] = row<QString, QString>();
        ScriptedChild child;
        VideoWidget tile(camera({"10:00:00-11:00:00"}, vcodec));
        tile.exportFragment(at("10:00:00"), at("10:05:00"));
        QTRY_COMPARE_WITH_TIMEOUT(child.starts().size(), 1, deadline);
        const QStringList arguments = child.starts().first();
        QCOMPARE(arguments.size(), 5);
        QCOMPARE(arguments.at(0), "export"_s);
        QCOMPARE(arguments.at(2), container);
        QCOMPARE(arguments.at(3), "300000"_s);
        QCOMPARE(arguments.at(4), filmPath("abc - Door 03.03.15 10.00.00-10.05.00."_s + container));
        const QString start = QString::number(at("10:00:00").toMSecsSinceEpoch());
        const QString end = QString::number(at("10:05:00").toMSecsSinceEpoch());
        QCOMPARE(arguments.at(1),
                 "http://abc:8080/flv/archive?server=1&camera=3&q=2&sessionId=pass"
                 "&startTime=%1&endTime=%2&uploadRate=500"
                 "&vcodec=flv&vcodec=h264&vcodec=mpeg4&acodec=mp3"_s.arg(start, end));
        tile.cancelExport();
        QCOMPARE(child.commands(), QStringList());
    }

    void recordedLength_data()
    {
        const QStringList two{"10:00:00-10:01:00", "10:03:00-10:04:00"};
        rows<QStringList, QDateTime, QDateTime, QString>(
            {"records", "start", "end", "length"},
            {
                {"two pieces", two, at("10:00:00"), at("10:05:00"), "120000"},
                {"parts of them", two, at("10:00:30"), at("10:03:10"), "40000"},
                {"from the gap on", two, at("10:01:00"), at("10:03:01"), "1000"},
                {"within one", two, at("10:00:10"), at("10:00:12"), "2000"},
                {"across midnight", QStringList{"23:59:00-23:59:59"}, at("23:59:30"),
                 at("23:59:30").addSecs(600), "29000"},
            });
    }

    void recordedLength()
    {
        const auto [records, start, end] = row<QStringList, QDateTime, QDateTime>();
        ScriptedChild child;
        VideoWidget tile(camera(records));
        tile.exportFragment(start, end);
        QTRY_COMPARE_WITH_TIMEOUT(child.starts().size(), 1, deadline);
        QTEST(child.starts().first().value(3), "length");
    }

    void nothingRecorded_data()
    {
        rows<QDateTime>({"start"}, {
                                       {"before the record", at("09:00:00")},
                                       {"after the record", at("11:00:00")},
                                       {"day that was not asked for", at("10:00:00").addDays(1)},
                                   });
    }

    void nothingRecorded()
    {
        const auto [start] = row<QDateTime>();
        ScriptedChild child({"print export-start\\n"});
        VideoWidget tile(camera());
        const ExportEvents told(tile);
        tile.exportFragment(start, start.addSecs(60));
        // Had that begun, this would be refused.
        tile.exportFragment(at("10:00:00"), at("10:01:00"));
        QTRY_COMPARE_WITH_TIMEOUT(told.events, QStringList{"started"}, deadline);
        QCOMPARE(child.starts().size(), 1);
        QVERIFY(child.starts().first().last().contains("10.00.00-10.01.00"_s));
    }

    void lines_data()
    {
        rows<QString, QStringList>(
            {"output", "events"},
            {
                // %1 stands for the path
                {"all", R"(export-start\nexport-percent 1\nexport-percent 99\nexport-done\n)",
                 QStringList{"started", "1", "99", "done %1"}},
                {"done once, and after the rest",
                 R"(export-done\nexport-percent 50\nexport-done\n)", QStringList{"50", "done %1"}},
                {"errors at once", R"(export-error\nexport-start\nexport-error\n)",
                 QStringList{"error %1", "started", "error %1"}},
                {"no number", R"(export-percent all\nexport-percent  7\n)", QStringList{"0", "0"}},
                {"percent without anything", R"(export-percent\nexport-percent 3\n)",
                 QStringList{"3"}},
                {"others, and blanks round it",
                 R"(\n export-start\x0d\nExport-start\nframe\nexport-started\n)",
                 QStringList{"started"}},
                {"nothing after a NUL", R"(export-percent 8\n\x00export-done\n)", QStringList{"8"}},
                {"no end of line", "export-percent 20", QStringList{"20"}},
            });
    }

    void lines()
    {
        auto [output, events] = row<QString, QStringList>();
        ScriptedChild child({"print " + output, "wait go", "print export-percent 77\\n"});
        VideoWidget tile(camera());
        const ExportEvents told(tile);
        tile.exportFragment(at("10:00:00"), at("10:05:00"));
        events.replaceInStrings("%1"_s, filmPath(name));
        QTRY_COMPARE_WITH_TIMEOUT(told.events, events, deadline);
        child.tell("go"_s);
        QTRY_COMPARE_WITH_TIMEOUT(told.events, events + QStringList{"77"}, deadline);
    }

    void badPercentIsLogged()
    {
        ScriptedChild child({"print export-percent\\nexport-start\\n"});
        VideoWidget tile(camera());
        const ExportEvents told(tile);
        const LogCapture log;
        tile.exportFragment(at("10:00:00"), at("10:05:00"));
        QTRY_COMPARE_WITH_TIMEOUT(told.events, QStringList{"started"}, deadline);
        QCOMPARE(log.linesOf("Bad VLC input"_s), QStringList{"Bad VLC input \"export-percent\""_s});
    }

    void secondStartOnlyChangesThePath()
    {
        ScriptedChild child({"print export-start\\n", "wait go", "print export-done\\n"});
        VideoWidget tile(camera());
        const ExportEvents told(tile);
        tile.exportFragment(at("10:00:00"), at("10:05:00"));
        QTRY_COMPARE_WITH_TIMEOUT(told.events, QStringList{"started"}, deadline);
        tile.exportFragment(at("10:10:00"), at("10:15:00"));
        child.tell("go"_s);
        QTRY_COMPARE_WITH_TIMEOUT(told.events.size(), 2, deadline);
        QCOMPARE(told.events.last(),
                 "done " + filmPath("abc - Door 03.03.15 10.10.00-10.15.00.mp4"_s));
        QCOMPARE(child.starts().size(), 1);
    }

    void childDiesWithoutAWord()
    {
        ScriptedChild child({"print export-start\\n", "die"});
        VideoWidget tile(camera());
        const ExportEvents told(tile);
        tile.exportFragment(at("10:00:00"), at("10:05:00"));
        QTRY_COMPARE_WITH_TIMEOUT(told.events, QStringList{"started"}, deadline);
        QTRY_VERIFY_WITH_TIMEOUT(!ScriptedChild::isAlive(child.lastProcessId()), deadline);
        // The next one can begin.
        QTRY_VERIFY_WITH_TIMEOUT((tile.exportFragment(at("10:00:00"), at("10:05:00")),
                                  QCoreApplication::processEvents(), told.events.size() > 1),
                                 deadline);
        QCOMPARE(told.events.last(), "started"_s);
    }

    void cancel_data()
    {
        rows<QStringList>(
            {"script"},
            {
                {"that ends with its input", QStringList{"print export-start\\n"}},
                {"that doesn't listen", QStringList{"deaf", "print export-start\\n"}},
                {"that hangs", QStringList{"print export-start\\n", "hang"}},
                {"that goes on telling",
                 QStringList{"print export-start\\n", "pace 200 export-error\\nexport-done\\n"}},
            });
    }

    void cancel()
    {
        const auto [script] = row<QStringList>();
        ScriptedChild child(script);
        VideoWidget tile(camera());
        tile.cancelExport(); // none is there
        ExportEvents told(tile);
        tile.exportFragment(at("10:00:00"), at("10:05:00"));
        QTRY_VERIFY_WITH_TIMEOUT(told.events.contains("started"_s), deadline);
        told.events.clear();
        QElapsedTimer time;
        time.start();
        tile.cancelExport();
        QVERIFY2(time.elapsed() < 10'000, QByteArray::number(time.elapsed()));
        QVERIFY(!ScriptedChild::isAlive(child.lastProcessId()));
        QCoreApplication::processEvents();
        QCOMPARE(told.events, QStringList());

        tile.exportFragment(at("10:00:00"), at("10:05:00"));
        QTRY_VERIFY_WITH_TIMEOUT(told.events.contains("started"_s), deadline);
    }

    void closedTileEndsItsExport()
    {
        ScriptedChild child({"print export-start\\n"});
        auto tile = std::make_unique<VideoWidget>(camera());
        const ExportEvents told(*tile);
        tile->exportFragment(at("10:00:00"), at("10:05:00"));
        QTRY_COMPARE_WITH_TIMEOUT(told.events, QStringList{"started"}, deadline);
        tile.reset();
        QVERIFY(!ScriptedChild::isAlive(child.lastProcessId()));
        QCOMPARE(told.events.size(), 1);
    }

    void realFile()
    {
        clip = FlvClip::make("-f lavfi -i testsrc2=s=160x96:r=25:d=4 -c:v libx264 "
                             "-preset ultrafast -pix_fmt yuv420p -g 25"_s.split(QLatin1Char(' ')));
        QVERIFY(!clip.isEmpty());
        StreamScript script;
        script.clip = clip;
        script.speed = 0;
        playRealPlayerFor(script);
        const API::CameraPtr door = camera();
        door->setId("127.0.0.1:%1"_s.arg(server->serverPort()), 3);
        VideoWidget tile(door);
        const ExportEvents told(tile);
        tile.exportFragment(at("10:00:00"), at("10:00:04"));
        const QString path = filmPath("127.0.0.1 - Door 03.03.15 "
                                      "10.00.00-10.00.04.mp4"_s);
        QTRY_COMPARE_WITH_TIMEOUT(told.events.value(told.events.size() - 1), "done " + path,
                                  deadline);
        QCOMPARE(told.events.first(), "started"_s);
        QCOMPARE(told.events.at(told.events.size() - 2), "100"_s);
        QVERIFY(QFileInfo(path).size() > 1000);
    }

    void realCancelLeavesNothing()
    {
        StreamScript script;
        script.clip = clip.repeated(10);
        script.burst = 8000;
        playRealPlayerFor(script);
        const API::CameraPtr door = camera();
        door->setId("127.0.0.1:%1"_s.arg(server->serverPort()), 3);
        door->setName("Gate"_s);
        VideoWidget tile(door);
        const ExportEvents told(tile);
        tile.exportFragment(at("10:00:00"), at("10:00:40"));
        QTRY_VERIFY_WITH_TIMEOUT(told.events.size() > 2, deadline);
        const QDir films(filmPath(QString()));
        const QStringList gates{"*Gate*"_s};
        QCOMPARE(films.entryList(gates).size(), 1);
        tile.cancelExport();
        QCOMPARE(films.entryList(gates), QStringList());
        QVERIFY(!told.events.last().startsWith("error"_s));
    }

private:
    /// The camera Door of the host abc.

    API::CameraPtr camera(const QStringList &spans = {"10:00:00-11:00:00"},
                          const QString &vcodec = "h264"_s)
    {
        const API::CameraPtr door = world.loadedCamera(3, day, recordsOf(spans));
        door->setId("abc:8080"_s, 3);
        door->setName("Door"_s);
        door->setSessionId("pass"_s);
        door->setVcodec(vcodec);
        return door;
    }

    void playRealPlayerFor(const StreamScript &script)
    {
        App::Environment::setPlayerProgram(QStringLiteral(ZORVANE_BIN_DIR "/vlc-stream"));
        server = std::make_unique<StreamServer>();
        QVERIFY(server->start());
        server->setScript(script);
        QVERIFY(QDir().mkpath(filmPath(QString())));
    }

    ArchiveWorld world;
    std::unique_ptr<StreamServer> server;
    FlvClip clip;
    const QString name = "abc - Door 03.03.15 10.00.00-10.05.00.mp4"_s;
};

QTEST_MAIN(TileExportTest)
#include "TileExportTest.moc"
