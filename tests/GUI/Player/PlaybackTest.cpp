// SPDX-License-Identifier: MIT
#include "API/Camera.h"
#include "tests/GUI/Player/TileFixture.h"
#include "tests/support/ArchiveWorld.h"
#include "tests/support/LogCapture.h"

using GUI::Player::VideoWidget;

namespace {

const QDate day(2015, 3, 3);
const QDateTime noon(day, QTime(12, 0, 0));
const QString playing = "print frame\\n"_s;
const QString films = QStandardPaths::writableLocation(QStandardPaths::MoviesLocation);
const QString film = films + "/abc - Door 03.03.15 12.00.00-12.05.00.mp4";

QDateTime at(const QString &time)
{
    return QDateTime(day, QTime::fromString(time, "hh:mm:ss"_s));
}

/// What the last child was sent for: live or archive and quality, and for the archive speed and
/// seconds from noon.
QString asked(const ScriptedChild &child)
{
    const QUrl url(child.starts().last().first());
    const QUrlQuery query(url);
    const QString mode = url.path().section('/', -1) + ' ' + query.queryItemValue("q"_s);
    if (mode.startsWith("live"_s))
        return mode;
    const qint64 start = query.queryItemValue("startTime"_s).toLongLong();
    return "%1 %2 %3"_s.arg(mode, query.queryItemValue("speed"_s))
        .arg(start - noon.toSecsSinceEpoch());
}

/// What a tile tells of its exports, in words and in order.
std::shared_ptr<QStringList> exportWords(VideoWidget &tile)
{
    auto words = std::make_shared<QStringList>();
    QObject::connect(&tile, &VideoWidget::exportStarted, &tile, [=] { *words << "started"; });
    QObject::connect(&tile, &VideoWidget::exportPercentDone, &tile,
                     [=](int percent) { *words << QString::number(percent); });
    QObject::connect(&tile, &VideoWidget::exportDone, &tile,
                     [=](const QString &path) { *words << "done " + path; });
    QObject::connect(&tile, &VideoWidget::exportError, &tile,
                     [=](const QString &path) { *words << "error " + path; });
    return words;
}

} // namespace

/// When a tile starts and ends its children, that of an export too, and what it shows meanwhile.
class PlaybackTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(world.start()); }

    void refusals_data()
    {
        const QVariantMap offline{{"online", false}};
        const QVariantMap unpaid{{"services", QVariantMap()}};
        const QVariantMap noLive{{"rights", QStringList{"archive"}}};
        const QVariantMap noArchive{{"rights", QStringList{"live"}}};
        rows<QVariantMap, bool, QString, QString, QString>(
            {"changes", "archive", "text", "before", "after"},
            {{"offline", offline, false, "Camera Gate is offline", "Idle", "Idle"},
             {"offline, archive", offline, true, "Camera Gate is offline", "Idle", "Idle"},
             {"unpaid", unpaid, false, "Camera Gate is not paid for", "Playing", "Playing"},
             {"no live right", noLive, false, "Live is not shared", "Playing", "Idle"},
             {"no archive right", noArchive, true, "Archive is not shared", "Playing", "Idle"}});
    }

    void refusals()
    {
        const auto [changes, archive, text, before, after] =
            row<QVariantMap, bool, QString, QString, QString>();
        ScriptedTile tile(playing, cloudCamera(changes));
        const auto play = [&tile](bool inArchive) {
            return inArchive ? tile.playArchive(noon, noon.addSecs(60)) : tile.playLive();
        };
        // What plays in the other mode ends only when this one is not shared.
        QCOMPARE(play(!archive), before == "Playing"_s);
        QTRY_COMPARE(stateOf(tile), before);
        QVERIFY(!play(archive));
        QVERIFY(showsText(tile, text));
        QCOMPARE(stateOf(tile), after);
        QCOMPARE(tile.isAlive(tile.lastProcessId()), after == "Playing"_s);
    }

    void fromStartToStop()
    {
        ScriptedTile tile("solid 64 48 ff0000ff|wait go|print size 64 48\\nframe\\n|wait paused"
                          "|print frame\\nframe\\n"_s);
        const QWidget &spinner = *tile.findChild<QWidget *>("spinnerWidget"_s);
        QVERIFY(spinner.isHidden() && !tile.isPlaying());
        QVERIFY(tile.playLive());
        QCOMPARE(stateOf(tile), "Starting"_s);
        QVERIFY(!spinner.isHidden() && !tile.isPlaying());
        tile.tell("go"_s);
        QTRY_COMPARE(stateOf(tile), "Playing"_s);
        QVERIFY(spinner.isHidden() && tile.isPlaying());
        tile.pause();
        tile.tell("paused"_s);
        // A frame that slips out renews the pause.
        QTRY_COMPARE(tile.orders(), QStringList({"volume 0", "pause", "pause"}));
        QCOMPARE(stateOf(tile), "Paused"_s);
        QVERIFY(tile.isPaused() && !tile.isPlaying());
        tile.unpause();
        QCOMPARE(stateOf(tile), "Playing"_s);

        tile.stop();
        QCOMPARE(stateOf(tile), "Idle"_s);
        QVERIFY(!tile.isAlive(tile.lastProcessId()));
        QVERIFY(showsText(tile, QString()));
        // The picture is gone from the file as well.
        QFile file(QDir::temp().filePath(tile.starts().first().value(1)));
        QVERIFY(file.open(QIODevice::ReadOnly));
        QCOMPARE(file.read(64 * 48 * 4), QByteArray("\x1d\x19\x19\xff").repeated(64 * 48));

        // An error in the archive is the end.
        FakeClock clock(noon);
        tile.setScript("print frame\\n|wait fail|print state 7\\n"_s);
        QVERIFY(tile.playArchive(noon, noon.addSecs(60)));
        QVERIFY(tile.isPlaying());
        QTRY_COMPARE(stateOf(tile), "Playing"_s);
        tile.tell("fail"_s);
        QTRY_COMPARE(stateOf(tile), "Error"_s);
        QVERIFY(!tile.isPlaying() && !tile.isAlive(tile.lastProcessId()));
        QVERIFY(showsText(tile, QString()));
        clock.advance(1000);
        tick(tile);
        QCOMPARE(stateOf(tile), "Error"_s);
    }

    void archiveOfARecord()
    {
        ScriptedTile tile(playing, camera({"12:00:00-12:10:00", "12:20:00-12:30:00"}));
        QVERIFY(tile.playsLive());
        QVERIFY(!tile.playArchive(noon.addDays(1), 4));
        for (const QString &gap : {"11:59:59"_s, "12:10:00"_s, "12:30:00"_s}) {
            QVERIFY(!tile.playArchive(at(gap), 4));
            QVERIFY(showsText(tile, "No records"_s));
            QCOMPARE(stateOf(tile), "Playing"_s);
        }
        for (const QString &time : {"12:00:00"_s, "12:09:59"_s, "12:20:00"_s}) {
            QVERIFY(tile.playArchive(at(time), 4));
            QTRY_COMPARE(asked(tile), "archive 2 4 %1"_s.arg(noon.secsTo(at(time))));
            QCOMPARE(tile.playbackTime(), at(time));
        }
    }

    void qualityAndFlags()
    {
        const API::CameraPtr door = localCamera();
        ScriptedTile tile(playing, door);
        QVERIFY(tile.playsLive());
        QCOMPARE(asked(tile), "live 2"_s);
        const qint64 child = tile.process().processId();
        for (const int sameOrNone : {2, -1, 3})
            tile.setQuality(sameOrNone);
        QCOMPARE(tile.process().processId(), child);
        tile.setQuality(0);
        QTRY_COMPARE(tile.starts().size(), 2);
        QCOMPARE(asked(tile), "live 0"_s);

        // The archive goes on where it was.
        tile.setScript("print time 30000\\nframe\\n"_s);
        QVERIFY(tile.playArchive(noon, noon.addSecs(600), 2));
        QTRY_COMPARE(tile.playbackTime(), noon.addSecs(60));
        tile.setScript(QString());
        tile.setQuality(1);
        QTRY_COMPARE(asked(tile), "archive 1 2 60"_s);

        // A tile that plays nothing only remembers.
        tile.stop();
        tile.setQuality(2);
        QCOMPARE(stateOf(tile), "Idle"_s);
        QVERIFY(tile.playArchive(noon, noon.addSecs(600)));
        QTRY_COMPARE(asked(tile), "archive 2 1 0"_s);

        // What a camera lacks ends live play until it has it again.
        tile.setScript(playing);
        QVERIFY(tile.playsLive());
        const auto starts = tile.starts().size();
        door->setFlags(API::CameraOffline);
        QCOMPARE(stateOf(tile), "Idle"_s);
        QVERIFY(showsText(tile, "Camera Door is offline"_s));
        door->setFlags(API::CameraNotPaid);
        QVERIFY(showsText(tile, "Camera Door is not paid for"_s));
        door->setFlags(0);
        QTRY_COMPARE(stateOf(tile), "Playing"_s);

        // They are nothing to the archive.
        QVERIFY(tile.playArchive(noon, noon.addSecs(60)));
        QTRY_COMPARE(stateOf(tile), "Playing"_s);
        door->setFlags(API::CameraOffline);
        QCOMPARE(stateOf(tile), "Playing"_s);
        door->setFlags(0);
        QCOMPARE(tile.starts().size(), starts + 2);
    }

    /// Where the program was held up, an end can be noticed before the last words.
    void aChildThatEndsUnnoticed()
    {
        ScriptedTile tile("print state 7\\n|exit 0"_s);
        QVERIFY(tile.playArchive(noon, noon.addSecs(60)));
        QFile child("/proc/%1/stat"_s.arg(tile.process().processId()));
        QDeadlineTimer deadline(30000);
        QByteArray stat;
        while (!stat.contains(") Z") && !deadline.hasExpired()) {
            QThread::msleep(1);
            QVERIFY(child.open(QIODevice::ReadOnly));
            stat = child.readAll();
            child.close();
        }
        QEvent isOver(QEvent::SockAct); // the notifier that was made last is that of the end
        QCoreApplication::sendEvent(tile.process().findChildren<QSocketNotifier *>().last(),
                                    &isOver);
        QTRY_COMPARE(stateOf(tile), "Error"_s);
    }

    void failuresAreReloaded()
    {
        FakeClock clock(noon);
        const QString failing = "print frame\\n|wait fail|print state 7\\n"_s;
        ScriptedTile tile(failing);
        QVERIFY(tile.playsLive());
        clock.advance(100);
        tick(tile);
        QCOMPARE(stateOf(tile), "Playing"_s);
        tile.tell("fail"_s);
        for (int reload = 1; reload <= 3; ++reload) {
            const QString state = reload == 2 ? "Playing"_s : "Error"_s; // that one only dies
            QTRY_VERIFY(reload != 2 || tile.process().state() == QProcess::NotRunning);
            QTRY_COMPARE(stateOf(tile), state);
            const LogCapture log;
            clock.advance(10);
            tick(tile);
            QCOMPARE(stateOf(tile), state);
            QCOMPARE(tile.starts().size(), reload);
            clock.advance(1);
            tile.setScript(reload == 1 ? "print frame\\n|die"_s : failing);
            tick(tile);
            QTRY_COMPARE(tile.starts().size(), reload + 1);
            const QString line = "Camera \"Door\" freezed and reload by timer. Reloads count: %1"_s;
            QCOMPARE(log.linesOf(line.arg(reload)).size(), 1);
            QVERIFY(dumpOf(tile).contains("reloads count: %1 is"_s.arg(reload)));
            QCOMPARE(tile.playbackTime(), clock.now());
        }
        // The fourth error is not waited on.
        QTRY_VERIFY((tick(tile), stateOf(tile) == "Idle"_s));
        QVERIFY(showsText(tile, "No video available"_s));
        QVERIFY(!tile.isAlive(tile.lastProcessId()));

        // The user has gone to the archive meanwhile, and is taken back.
        tile.setScript(playing);
        QVERIFY(tile.playArchive(noon.addDays(-1), noon));
        QTRY_COMPARE(tile.starts().size(), 5);
        QVERIFY(expireTimers(std::chrono::seconds(30)));
        QTRY_COMPARE(tile.starts().size(), 6);
        QCOMPARE(asked(tile), "live 2"_s);
        QTRY_COMPARE(stateOf(tile), "Playing"_s);
        QVERIFY(dumpOf(tile).contains("reloads count: 0 is"_s));
    }

    void fragments()
    {
        const API::CameraPtr door =
            camera({"12:00:00-12:01:00", "12:03:00-12:04:00", "23:59:00-23:59:59"});
        ScriptedTile tile(QString(), door);
        // Nothing is recorded there, and what has begun would refuse the next.
        tile.exportFragment(noon.addSecs(-60), noon);
        tile.exportFragment(noon.addSecs(60), noon.addSecs(180));
        tile.exportFragment(noon.addDays(1), noon.addDays(1).addSecs(60));
        const QList<QStringList> fragments{{"h264", "12:00:00", "300", "mp4 120000"},
                                           {"H264", "12:00:30", "160", "avi 40000"},
                                           {"h264", "12:01:00", "121", "mp4 1000"},
                                           {"", "12:00:10", "2", "avi 2000"},
                                           {"h264", "23:59:30", "600", "mp4 29000"}};
        for (const QStringList &fragment : fragments) {
            door->setVcodec(fragment.at(0));
            const QDateTime start = at(fragment.at(1));
            const QDateTime end = start.addSecs(fragment.at(2).toInt());
            const auto starts = tile.starts().size();
            tile.exportFragment(start, end);
            QTRY_COMPARE(tile.starts().size(), starts + 1);
            const QStringList given = tile.starts().last();
            QCOMPARE(given.value(0), "export"_s);
            const QString span = "&startTime=%1&endTime=%2&"_s.arg(start.toMSecsSinceEpoch())
                                     .arg(end.toMSecsSinceEpoch());
            QVERIFY(given.value(1).startsWith("http://abc:8080/flv/archive?server=1&camera=3&"_s));
            QVERIFY(given.value(1).contains(span));
            QCOMPARE(given.value(2) + ' ' + given.value(3), fragment.at(3));
            const QString name = "/abc - Door 03.03.15 " + start.toString("hh.mm.ss-") +
                                 end.toString("hh.mm.ss.") + given.value(2);
            QCOMPARE(given.value(4), films + name);
            tile.cancelExport();
        }
        QCOMPARE(tile.commands(), QStringList());
    }

    void linesOfAnExportAndTheNext()
    {
        ScriptedTile tile(
            "complain 1000000 no key frame\\n|print export-start\\nexport-percent 9\\n"
            "|wait go|print export-done\\nexport-percent\\nexport-error\\n|die"_s,
            camera());
        const auto told = exportWords(tile);
        tile.exportFragment(noon.addSecs(600), noon.addSecs(900));
        QTRY_COMPARE(*told, QStringList({"started", "9"}));
        tick(tile); // what it complains about doesn't pile up
        QVERIFY(tile.findChildren<QProcess *>().at(1)->readAllStandardError().size() < 1000000);
        // A second one only changes the path.
        tile.exportFragment(noon, noon.addSecs(300));
        const LogCapture log;
        tile.tell("go"_s);
        QTRY_COMPARE(*told, QStringList({"started", "9", "error " + film, "done " + film}));
        QCOMPARE(log.linesOf("Bad VLC input \"export-percent\""_s).size(), 1);
        QCOMPARE(tile.starts().size(), 1);
        QTRY_VERIFY(!tile.isExporting());
        tick(tile);
        QCOMPARE(log.linesOf("Cannot export"_s), QStringList());
        // The next one can begin when that one has died.
        QTRY_VERIFY((tile.exportFragment(noon, noon.addSecs(300)),
                     QCoreApplication::processEvents(), told->size() > 4));
    }

    void failedExports_data()
    {
        // The last line names the stream.
        const QString why =
            "complain 1 vlc-stream: no sound\\nvlc-stream: can't make x\\nhttp://abc/?key=pass\\n|"_s;
        const QString error = "error " + film;
        rows<QString, QString, QString>(
            {"script", "told", "logged"},
            {{"a word", why + "print export-error\\n|exit 1", error, "can't make x\""},
             {"no word", why + "exit 1", "", "can't make x\""},
             {"no reason", "exit 3", "", "ended with exit code 3"},
             {"killed", "die", "", "was killed"},
             {"not started", "", error, "No such file"}});
    }

    void failedExports()
    {
        const auto [script, told, logged] = row<QString, QString, QString>();
        ScriptedTile tile(script, camera());
        if (script.isEmpty())
            App::Environment::setPlayerProgram("/nowhere"_s);
        const auto words = exportWords(tile);
        const LogCapture log;
        const auto end = [&tile](const std::function<void()> &next) {
            tile.exportFragment(noon, noon.addSecs(300));
            QTRY_VERIFY(!tile.isExporting());
            next();
        };
        end([&] { tick(tile), tick(tile); });
        QCOMPARE(words->join(' '), told);
        end([&] { end([&] { tile.cancelExport(); }); });
        const QStringList lines = log.linesOf("Cannot export \"%1\" : "_s.arg(film));
        QCOMPARE(lines.size(), 3);
        QVERIFY2(lines.first().contains(logged), qPrintable(lines.first()));
        QCOMPARE(log.lines().filter("pass"_s), QStringList());
        QVERIFY(QFileInfo(films).isDir());
    }

    void endsOfExports()
    {
        // It may end with its input, not listen, hang, or go on telling.
        for (const QString &script :
             {"print export-start\\n"_s, "deaf|print export-start\\n"_s,
              "print export-start\\n|hang"_s, "pace 200 export-start\\nexport-done\\n"_s}) {
            const ScriptedChild child(script.split('|'));
            auto tile = std::make_unique<VideoWidget>(camera());
            const auto told = exportWords(*tile);
            const LogCapture log;
            tile->cancelExport(); // none is there
            for (const bool isCancelled : {true, false}) {
                tile->exportFragment(noon, noon.addSecs(300));
                QTRY_VERIFY(told->contains("started"_s));
                told->clear();
                const QDeadlineTimer deadline(10000);
                isCancelled ? tile->cancelExport() : tile.reset();
                QVERIFY(!deadline.hasExpired());
                QVERIFY(!ScriptedChild::isAlive(child.lastProcessId()));
                QCoreApplication::processEvents();
                if (tile)
                    tick(*tile);
                QCOMPARE(*told + log.linesOf("Cannot export"_s), QStringList());
            }
        }
    }

private:
    /// The camera Door of the host abc, with records of these spans.
    API::CameraPtr camera(const QStringList &spans = {"12:00:00-13:00:00"})
    {
        QList<API::ArchiveRecord> records;
        for (const QString &span : spans)
            records.append({at(span.section('-', 0, 0)), at(span.section('-', 1, 1))});
        API::CameraPtr door = world.loadedCamera(3, day, records);
        door->setId("abc:8080"_s, 3);
        door->setName("Door"_s);
        door->setSessionId("pass"_s);
        door->setVcodec("h264"_s);
        return door;
    }

    ArchiveWorld world;
};

QTEST_MAIN(PlaybackTest)
#include "PlaybackTest.moc"
