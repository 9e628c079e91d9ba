// SPDX-License-Identifier: MIT
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QStandardPaths>
#include <QUrlQuery>
#include <QtTest>

#include <memory>

#include "API/Camera.h"
#include "App/Environment.h"
#include "GUI/Player/VideoWidget.h"
#include "tests/GUI/ArchiveWorld.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ScriptedChild.h"
#include "tests/support/StreamServer.h"

using namespace ZorvaneClient;
using GUI::Player::VideoWidget;
using namespace ZorvaneClient::Tests;

namespace {

using Records = QList<API::ArchiveRecord>;

const QDate day(2015, 3, 3);
constexpr int deadline = 30'000;

QDateTime at(const QString &time)
{
    return QDateTime(day, QTime::fromString(time, QStringLiteral("hh:mm:ss")));
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
                         [this] { events << QStringLiteral("started"); });
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
    void initTestCase();
    void files_data();
    void files();
    void recordedLength_data();
    void recordedLength();
    void nothingRecorded_data();
    void nothingRecorded();
    void lines_data();
    void lines();
    void badPercentIsLogged();
    void secondStartOnlyChangesThePath();
    void childDiesWithoutAWord();
    void cancel_data();
    void cancel();
    void closedTileEndsItsExport();
    void realFile();
    void realCancelLeavesNothing();

private:
    /// The camera Door of the host abc.
    API::CameraPtr camera(const QStringList &spans = {"10:00:00-11:00:00"},
                          const QString &vcodec = QStringLiteral("h264"));
    void playRealPlayerFor(const StreamScript &script);

    ArchiveWorld world;
    std::unique_ptr<StreamServer> server;
    FlvClip clip;
    const QString name = QStringLiteral("abc - Door 03.03.15 10.00.00-10.05.00.mp4");
};

void TileExportTest::initTestCase()
{
    QVERIFY(world.start());
}

API::CameraPtr TileExportTest::camera(const QStringList &spans, const QString &vcodec)
{
    const API::CameraPtr door = world.loadedCamera(3, day, recordsOf(spans));
    door->setId(QStringLiteral("abc:8080"), 3);
    door->setName(QStringLiteral("Door"));
    door->setSessionId(QStringLiteral("pass"));
    door->setVcodec(vcodec);
    return door;
}

void TileExportTest::files_data()
{
    QTest::addColumn<QString>("vcodec");
    QTest::addColumn<QString>("container");
    QTest::newRow("h264") << "h264"
                          << "mp4";
    QTest::newRow("capitals") << "H264"
                              << "avi";
    QTest::newRow("mpeg4") << "mpeg4"
                           << "avi";
    QTest::newRow("not known") << ""
                               << "avi";
}

void TileExportTest::files()
{
    QFETCH(QString, vcodec);
    QFETCH(QString, container);
    ScriptedChild child;
    VideoWidget tile(camera({"10:00:00-11:00:00"}, vcodec));
    tile.exportFragment(at("10:00:00"), at("10:05:00"));
    QTRY_COMPARE_WITH_TIMEOUT(child.starts().size(), 1, deadline);
    const QStringList arguments = child.starts().first();
    QCOMPARE(arguments.size(), 5);
    QCOMPARE(arguments.at(0), QStringLiteral("export"));
    QCOMPARE(arguments.at(2), container);
    QCOMPARE(arguments.at(3), QStringLiteral("300000"));
    QCOMPARE(arguments.at(4),
             filmPath(QStringLiteral("abc - Door 03.03.15 10.00.00-10.05.00.") + container));
    const QString start = QString::number(at("10:00:00").toMSecsSinceEpoch());
    const QString end = QString::number(at("10:05:00").toMSecsSinceEpoch());
    QCOMPARE(arguments.at(1),
             QStringLiteral("http://abc:8080/flv/archive?server=1&camera=3&q=2&sessionId=pass"
                            "&startTime=%1&endTime=%2&uploadRate=500"
                            "&vcodec=flv&vcodec=h264&vcodec=mpeg4&acodec=mp3")
                 .arg(start, end));
    tile.cancelExport();
    QCOMPARE(child.commands(), QStringList());
}

void TileExportTest::recordedLength_data()
{
    QTest::addColumn<QStringList>("records");
    QTest::addColumn<QDateTime>("start");
    QTest::addColumn<QDateTime>("end");
    QTest::addColumn<QString>("length");
    const QStringList two{"10:00:00-10:01:00", "10:03:00-10:04:00"};
    QTest::newRow("two pieces") << two << at("10:00:00") << at("10:05:00") << "120000";
    QTest::newRow("parts of them") << two << at("10:00:30") << at("10:03:10") << "40000";
    QTest::newRow("from the gap on") << two << at("10:01:00") << at("10:03:01") << "1000";
    QTest::newRow("within one") << two << at("10:00:10") << at("10:00:12") << "2000";
    QTest::newRow("across midnight") << QStringList{"23:59:00-23:59:59"} << at("23:59:30")
                                     << at("23:59:30").addSecs(600) << "29000";
}

void TileExportTest::recordedLength()
{
    QFETCH(QStringList, records);
    QFETCH(QDateTime, start);
    QFETCH(QDateTime, end);
    ScriptedChild child;
    VideoWidget tile(camera(records));
    tile.exportFragment(start, end);
    QTRY_COMPARE_WITH_TIMEOUT(child.starts().size(), 1, deadline);
    QTEST(child.starts().first().value(3), "length");
}

void TileExportTest::nothingRecorded_data()
{
    QTest::addColumn<QDateTime>("start");
    QTest::newRow("before the record") << at("09:00:00");
    QTest::newRow("after the record") << at("11:00:00");
    QTest::newRow("day that was not asked for") << at("10:00:00").addDays(1);
}

void TileExportTest::nothingRecorded()
{
    QFETCH(QDateTime, start);
    ScriptedChild child({"print export-start\\n"});
    VideoWidget tile(camera());
    const ExportEvents told(tile);
    tile.exportFragment(start, start.addSecs(60));
    // Had that begun, this would be refused.
    tile.exportFragment(at("10:00:00"), at("10:01:00"));
    QTRY_COMPARE_WITH_TIMEOUT(told.events, QStringList{"started"}, deadline);
    QCOMPARE(child.starts().size(), 1);
    QVERIFY(child.starts().first().last().contains(QStringLiteral("10.00.00-10.01.00")));
}

void TileExportTest::lines_data()
{
    QTest::addColumn<QString>("output");
    QTest::addColumn<QStringList>("events"); // %1 stands for the path
    QTest::newRow("all") << R"(export-start\nexport-percent 1\nexport-percent 99\nexport-done\n)"
                         << QStringList{"started", "1", "99", "done %1"};
    QTest::newRow("done once, and after the rest")
        << R"(export-done\nexport-percent 50\nexport-done\n)" << QStringList{"50", "done %1"};
    QTest::newRow("errors at once") << R"(export-error\nexport-start\nexport-error\n)"
                                    << QStringList{"error %1", "started", "error %1"};
    QTest::newRow("no number") << R"(export-percent all\nexport-percent  7\n)"
                               << QStringList{"0", "0"};
    QTest::newRow("percent without anything")
        << R"(export-percent\nexport-percent 3\n)" << QStringList{"3"};
    QTest::newRow("others, and blanks round it")
        << R"(\n export-start\x0d\nExport-start\nframe\nexport-started\n)"
        << QStringList{"started"};
    QTest::newRow("nothing after a NUL")
        << R"(export-percent 8\n\x00export-done\n)" << QStringList{"8"};
    QTest::newRow("no end of line") << "export-percent 20" << QStringList{"20"};
}

void TileExportTest::lines()
{
    QFETCH(QString, output);
    QFETCH(QStringList, events);
    ScriptedChild child({"print " + output, "wait go", "print export-percent 77\\n"});
    VideoWidget tile(camera());
    const ExportEvents told(tile);
    tile.exportFragment(at("10:00:00"), at("10:05:00"));
    events.replaceInStrings(QStringLiteral("%1"), filmPath(name));
    QTRY_COMPARE_WITH_TIMEOUT(told.events, events, deadline);
    child.tell(QStringLiteral("go"));
    QTRY_COMPARE_WITH_TIMEOUT(told.events, events + QStringList{"77"}, deadline);
}

void TileExportTest::badPercentIsLogged()
{
    ScriptedChild child({"print export-percent\\nexport-start\\n"});
    VideoWidget tile(camera());
    const ExportEvents told(tile);
    const LogCapture log;
    tile.exportFragment(at("10:00:00"), at("10:05:00"));
    QTRY_COMPARE_WITH_TIMEOUT(told.events, QStringList{"started"}, deadline);
    QCOMPARE(log.linesOf(QStringLiteral("Bad VLC input")),
             QStringList{QStringLiteral("Bad VLC input \"export-percent\"")});
}

void TileExportTest::secondStartOnlyChangesThePath()
{
    ScriptedChild child({"print export-start\\n", "wait go", "print export-done\\n"});
    VideoWidget tile(camera());
    const ExportEvents told(tile);
    tile.exportFragment(at("10:00:00"), at("10:05:00"));
    QTRY_COMPARE_WITH_TIMEOUT(told.events, QStringList{"started"}, deadline);
    tile.exportFragment(at("10:10:00"), at("10:15:00"));
    child.tell(QStringLiteral("go"));
    QTRY_COMPARE_WITH_TIMEOUT(told.events.size(), 2, deadline);
    QCOMPARE(told.events.last(),
             "done " + filmPath(QStringLiteral("abc - Door 03.03.15 10.10.00-10.15.00.mp4")));
    QCOMPARE(child.starts().size(), 1);
}

void TileExportTest::childDiesWithoutAWord()
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
    QCOMPARE(told.events.last(), QStringLiteral("started"));
}

void TileExportTest::cancel_data()
{
    QTest::addColumn<QStringList>("script");
    QTest::newRow("that ends with its input") << QStringList{"print export-start\\n"};
    QTest::newRow("that doesn't listen") << QStringList{"deaf", "print export-start\\n"};
    QTest::newRow("that hangs") << QStringList{"print export-start\\n", "hang"};
    QTest::newRow("that goes on telling")
        << QStringList{"print export-start\\n", "pace 200 export-error\\nexport-done\\n"};
}

void TileExportTest::cancel()
{
    QFETCH(QStringList, script);
    ScriptedChild child(script);
    VideoWidget tile(camera());
    tile.cancelExport(); // none is there
    ExportEvents told(tile);
    tile.exportFragment(at("10:00:00"), at("10:05:00"));
    QTRY_VERIFY_WITH_TIMEOUT(told.events.contains(QStringLiteral("started")), deadline);
    told.events.clear();
    QElapsedTimer time;
    time.start();
    tile.cancelExport();
    QVERIFY2(time.elapsed() < 10'000, QByteArray::number(time.elapsed()));
    QVERIFY(!ScriptedChild::isAlive(child.lastProcessId()));
    QCoreApplication::processEvents();
    QCOMPARE(told.events, QStringList());

    tile.exportFragment(at("10:00:00"), at("10:05:00"));
    QTRY_VERIFY_WITH_TIMEOUT(told.events.contains(QStringLiteral("started")), deadline);
}

void TileExportTest::closedTileEndsItsExport()
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

void TileExportTest::playRealPlayerFor(const StreamScript &script)
{
    App::Environment::setPlayerProgram(QStringLiteral(ZORVANE_BIN_DIR "/vlc-stream"));
    server = std::make_unique<StreamServer>();
    QVERIFY(server->start());
    server->setScript(script);
    QVERIFY(QDir().mkpath(filmPath(QString())));
}

void TileExportTest::realFile()
{
    clip = FlvClip::make(QStringLiteral("-f lavfi -i testsrc2=s=160x96:r=25:d=4 -c:v libx264 "
                                        "-preset ultrafast -pix_fmt yuv420p -g 25")
                             .split(QLatin1Char(' ')));
    QVERIFY(!clip.isEmpty());
    StreamScript script;
    script.clip = clip;
    script.speed = 0;
    playRealPlayerFor(script);
    const API::CameraPtr door = camera();
    door->setId(QStringLiteral("127.0.0.1:%1").arg(server->serverPort()), 3);
    VideoWidget tile(door);
    const ExportEvents told(tile);
    tile.exportFragment(at("10:00:00"), at("10:00:04"));
    const QString path = filmPath(QStringLiteral("127.0.0.1 - Door 03.03.15 "
                                                 "10.00.00-10.00.04.mp4"));
    QTRY_COMPARE_WITH_TIMEOUT(told.events.value(told.events.size() - 1), "done " + path, deadline);
    QCOMPARE(told.events.first(), QStringLiteral("started"));
    QCOMPARE(told.events.at(told.events.size() - 2), QStringLiteral("100"));
    QVERIFY(QFileInfo(path).size() > 1000);
}

void TileExportTest::realCancelLeavesNothing()
{
    StreamScript script;
    script.clip = clip.repeated(10);
    script.burst = 8000;
    playRealPlayerFor(script);
    const API::CameraPtr door = camera();
    door->setId(QStringLiteral("127.0.0.1:%1").arg(server->serverPort()), 3);
    door->setName(QStringLiteral("Gate"));
    VideoWidget tile(door);
    const ExportEvents told(tile);
    tile.exportFragment(at("10:00:00"), at("10:00:40"));
    QTRY_VERIFY_WITH_TIMEOUT(told.events.size() > 2, deadline);
    const QDir films(filmPath(QString()));
    const QStringList gates{QStringLiteral("*Gate*")};
    QCOMPARE(films.entryList(gates).size(), 1);
    tile.cancelExport();
    QCOMPARE(films.entryList(gates), QStringList());
    QVERIFY(!told.events.last().startsWith(QLatin1String("error")));
}

QTEST_MAIN(TileExportTest)
#include "TileExportTest.moc"
