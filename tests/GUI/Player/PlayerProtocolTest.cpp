// SPDX-License-Identifier: MIT
#include <csignal>

#include <sys/file.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utime.h>

#include "App/Settings.h"
#include "GUI/Player/FrameFile.h"
#include "tests/GUI/Player/TileFixture.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ProcessTraces.h"

using GUI::Player::VideoWidget;
using GUI::Player::Internal::FrameFile;

static bool isLockable = true;

/// In place of the C library's; a disk may know no locks.
extern "C" int flock(int descriptor, int operation) noexcept
{
    errno = ENOLCK;
    return isLockable ? int(::syscall(SYS_flock, descriptor, operation)) : -1;
}

namespace {

const QDateTime noon(QDate(2015, 3, 3), QTime(12, 0, 0));

/// Fills a picture with red, and begins to tell of it.
const QString red = "solid 32 24 ff0000ff|print "_s;

QString frameFileOf(const ScriptedChild &child)
{
    return QDir::tempPath() + QDir::separator() + child.starts().last().value(1);
}

/// Of the tile that is made next.
QString nextFrameFile(const ScriptedChild &last)
{
    const QString path = frameFileOf(last);
    const int dash = path.lastIndexOf('-') + 1;
    return path.left(dash) + QString::number(path.mid(dash).toLongLong() + 1);
}

/// State, resolution and colour of a tile.
QString said(VideoWidget &tile)
{
    const QRegularExpression pattern(" state: (\\w+) .*resolution: (\\d+) x (\\d+) "_s);
    const QRegularExpressionMatch match = pattern.match(dumpOf(tile));
    const QHash<QString, QString> names{
        {"#ff0000", "red"}, {"#000000", "black"}, {"#19191d", "dark"}};
    const QString colour = names.value(onScreen(tile).pixelColor(20, 120).name(), "other"_s);
    return "%1 %2x%3 %4"_s.arg(match.captured(1), match.captured(2), match.captured(3), colour);
}

} // namespace

/// What a tile and its child say to each other, over real pipes and a real mapped file.
class PlayerProtocolTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { App::settings().setValue("proxy/useProxy"_s, false); }

    void arguments_data()
    {
        const QString plain = ":http-proxy=http://proxy:3128/"_s;
        const QString ann = ":http-proxy=http://ann@proxy:3128/"_s;
        rows<QStringList, bool, QStringList>(
            {"proxy", "isLocal", "arguments"},
            {{"no proxy", {}, false, {}},
             {"no host", {"", "ann", "secret"}, false, {}},
             {"host", {"proxy", "", ""}, false, {plain}},
             {"user", {"proxy", "ann", ""}, false, {ann}},
             {"all", {"proxy", "ann", "s%1 t"}, false, {ann, ":http-proxy-pwd=s%1 t"}},
             {"password", {"proxy", "", "secret"}, false, {plain, ":http-proxy-pwd=secret"}},
             {"markers", {"::1%1", "a%2", ""}, false, {":http-proxy=http://a%2@::1%1:3128/"}},
             {"LAN camera", {"proxy", "ann", "secret"}, true, {}}});
    }

    void arguments()
    {
        const auto [proxy, isLocal, arguments] = row<QStringList, bool, QStringList>();
        App::settings().setValue("proxy/useProxy"_s, !proxy.isEmpty());
        App::settings().setValue("proxy/host"_s, proxy.value(0, "proxy"_s));
        App::settings().setValue("proxy/port"_s, 3128);
        App::settings().setValue("proxy/username"_s, proxy.value(1));
        App::settings().setValue("proxy/password"_s, proxy.value(2));
        ScriptedTile tile(QString(), isLocal ? localCamera() : cloudCamera());
        QVERIFY(tile.play("http://host/a b&c"_s));
        QTRY_COMPARE(tile.starts().size(), 1);
        const QStringList given = tile.starts().first();
        QCOMPARE(given.value(0), "http://host/a b&c"_s);
        QVERIFY(QRegularExpression("^zorvane-player-\\d+$"_s).match(given.value(1)).hasMatch());
        QCOMPARE(given.mid(2), arguments);
    }

    void frameFileLivesWithTheTile()
    {
        ScriptedChild child;
        const QStringList before = QDir::temp().entryList(QDir::Files);
        auto tile = std::make_unique<VideoWidget>(localCamera());
        QCOMPARE(QDir::temp().entryList(QDir::Files), before);
        for (int start = 1; start <= 2; ++start) {
            QVERIFY(tile->playLive());
            QTRY_COMPARE(child.starts().size(), start);
        }
        const QString path = frameFileOf(child);
        QCOMPARE(QFileInfo(path).size(), qint64(12582912));
        QCOMPARE(QFile::permissions(path) & ~(QFile::ReadUser | QFile::WriteUser),
                 QFile::ReadOwner | QFile::WriteOwner);
        QCOMPARE(child.starts().first().value(1), child.starts().last().value(1));
        tile->stop();
        QVERIFY(QFileInfo::exists(path));
        tile.reset();
        QVERIFY(!QFileInfo::exists(path));
    }

    void frameFileOrProgramThatCannotBe()
    {
        ScriptedTile first;
        QVERIFY(first.playLive());
        QTRY_COMPARE(first.starts().size(), 1);
        rlimit before;
        ::getrlimit(RLIMIT_FSIZE, &before);
        rlimit small = before;
        small.rlim_cur = 1 << 20;
        const auto handler = std::signal(SIGXFSZ, SIG_IGN);
        for (const bool isInTheWay : {true, false}) {
            const QString path = nextFrameFile(first);
            const auto starts = first.starts().size();
            VideoWidget tile(localCamera());
            QSignalSpy failed(&tile, &VideoWidget::error);
            const LogCapture log;
            QVERIFY(isInTheWay ? QDir().mkdir(path) : ::setrlimit(RLIMIT_FSIZE, &small) == 0);
            const bool plays = tile.playLive();
            QVERIFY(isInTheWay ? QDir().rmdir(path) : ::setrlimit(RLIMIT_FSIZE, &before) == 0);
            QVERIFY(!plays);
            const QString trouble = isInTheWay ? "open"_s : "resize"_s;
            QCOMPARE(log.linesOf("VideoWidget: Could not " + trouble + " SHM file").size(), 1);
            QCOMPARE(failed.size(), 1);
            QCOMPARE(stateOf(tile), "Idle"_s);
            QVERIFY(!QFileInfo::exists(path));

            // A link that somebody puts in its place is not followed.
            QTemporaryFile victim;
            QVERIFY(victim.open() && victim.link(path));
            QVERIFY(tile.playLive());
            QTRY_COMPARE(first.starts().size(), starts + 1);
            QCOMPARE(frameFileOf(first), path);
            QVERIFY(!QFileInfo(path).isSymLink());
            QCOMPARE(victim.size(), qint64(0));
        }
        std::signal(SIGXFSZ, handler);

        // Without the program a tile waits for it.
        first.setScript("print frame\\n"_s);
        App::Environment::setPlayerProgram("/nowhere/player"_s);
        QVERIFY(first.playLive());
        tick(first);
        QCOMPARE(stateOf(first), "Starting"_s);
        App::Environment::setPlayerProgram(ScriptedChild::program());
        QVERIFY(first.playsLive());
    }

    /// Two copies of the program in one temporary folder: the second leaves the first alone.
    void frameFileOfAnotherCopy()
    {
        ScriptedTile first;
        QVERIFY(first.playLive());
        QTRY_COMPARE(first.starts().size(), 1);
        const QString path = nextFrameFile(first);
        QFile theirs(path);
        QVERIFY(theirs.open(QIODevice::ReadWrite) && theirs.write("theirs") == 6);
        theirs.flush();
        QCOMPARE(::flock(theirs.handle(), LOCK_EX), 0);
        auto tile = std::make_unique<VideoWidget>(localCamera());
        tile->show();
        for (const bool isHeld : {true, false}) {
            if (!isHeld)
                theirs.close();
            const LogCapture log;
            QCOMPARE(tile->playLive(), !isHeld);
            QCOMPARE(log.linesOf("VideoWidget: Another copy of the program"_s).size(), int(isHeld));
            QVERIFY(!isHeld || showsText(*tile, "Used by another copy of the program"_s));
            QTRY_COMPARE(first.starts().size(), isHeld ? 1 : 2);
            // Ours is locked as well.
            QFile ours(path);
            QVERIFY(ours.open(QIODevice::ReadOnly));
            QCOMPARE(ours.peek(6) == "theirs", isHeld);
            QCOMPARE(::flock(ours.handle(), LOCK_EX | LOCK_NB), -1);
        }
        tile.reset();
        QVERIFY(!QFile::exists(path));
    }

    void leftOversAreRemoved()
    {
        ScriptedTile running;
        QVERIFY(running.playLive());
        QTRY_COMPARE(running.starts().size(), 1);
        const FakeClock clock(noon);
        const int descriptors = ProcessTraces::now().descriptors;
        const QStringList before = QDir::temp().entryList(QDir::Files);
        for (const char *name :
             {"zorvane-player-99999", "zorvane-player-99998", "zorvane-player-x"}) {
            QFile file(QDir::temp().filePath(QLatin1String(name)));
            QVERIFY(file.open(QIODevice::ReadWrite));
            const QDateTime time = noon.addSecs(file.fileName().endsWith("8"_s) ? -10 : -11);
            QVERIFY(file.setFileTime(time, QFileDevice::FileModificationTime));
        }
        const utimbuf longAgo = {};
        ::utime(QFile::encodeName(frameFileOf(running)), &longAgo);
        isLockable = false;
        FrameFile::removeLeftOvers();
        QVERIFY(QDir::temp().exists("zorvane-player-99999"_s));
        {
            FrameFile frames;
            QVERIFY(QFile(QDir::temp().filePath(frames.name())).open(QIODevice::WriteOnly));
            QVERIFY(frames.open()); // no tile stays dark for a file that may be nobody's
        }
        isLockable = true;
        FrameFile::removeLeftOvers();
        QStringList left = QDir::temp().entryList(QDir::Files);
        for (const QString &name : {"zorvane-player-99998"_s, "zorvane-player-x"_s})
            QVERIFY(left.removeOne(name) && QDir::temp().remove(name));
        QCOMPARE(left, before);
        QCOMPARE(ProcessTraces::now().descriptors, descriptors);
    }

    /// Memory over no block of the disk ends whoever touches it.
    void fullTemporaryFolder()
    {
        const QTemporaryDir folder;
        const QByteArray place = QFile::encodeName(folder.path());
        if (::mount("small", place, "tmpfs", 0, "size=1m") != 0)
            QSKIP("only root can mount a small folder");
        const QByteArray before = qgetenv("TMPDIR");
        qputenv("TMPDIR", place);
        {
            ScriptedTile tile(
                "print size 1280 720\\nframe|wait room|solid 1280 720 ff0000ff|print frame"_s);
            const LogCapture log;
            QVERIFY(tile.playLive());
            QTRY_COMPARE(log.linesOf("VideoWidget: No room for a frame in"_s).size(), 1);
            QCOMPARE(stateOf(tile), "Playing"_s);
            tile.grab();
            QCOMPARE(::mount("small", place, "tmpfs", MS_REMOUNT, "size=16m"), 0);
            tile.tell("room"_s);
            QTRY_COMPARE(onScreen(tile).pixelColor(tile.rect().center()), QColor(Qt::red));
        }
        before.isNull() ? qunsetenv("TMPDIR") : qputenv("TMPDIR", before);
        QCOMPARE(::umount(place), 0);
    }

    void commands()
    {
        ScriptedTile tile;
        tile.setActive(true);
        tile.setSoundVolume(30);
        tick(tile); // there is nobody to be pinged
        tile.pause();
        tile.stop(); // keeps what waits
        QVERIFY(tile.playLive());
        QStringList expected{"volume 30", "pause", "volume 30"};
        QTRY_COMPARE(tile.orders(), expected);
        QCOMPARE(tile.commands().mid(0, 2), expected.mid(0, 2));
        // Nothing waits any more.
        QVERIFY(tile.playLive());
        tile.pause();
        tile.unpause();
        tile.enableSound(false);
        tile.setSoundVolume(40);
        tile.enableSound(true);
        tile.setActive(false);
        tile.setSoundVolume(50);
        tile.setActive(true);
        tile.enableSound(true);
        expected << QStringList{"volume 30", "pause",     "unpause",  "volume 0",
                                "volume 0",  "volume 40", "volume 0", "volume 50"};
        QTRY_COMPARE(tile.orders(), expected);

        tile.forgetCommands();
        tick(tile);
        QTRY_VERIFY(tile.commands().contains("ping"));
        // The tile's own timer does the same, every two seconds.
        QVERIFY(expireTimers(std::chrono::seconds(2), &tile));
        QTRY_VERIFY(tile.commands().count("ping") > 1);
    }

    void scripts_data()
    {
        QRandomGenerator generator(20150303);
        QString noise;
        for (int i = 0; i < 4000; ++i)
            noise += "\\x%1"_s.arg(generator.bounded(256), 2, 16, QLatin1Char('0'));
        const QString dark = "Starting 320x240 dark"_s;
        const QString black = "Playing 320x240 black"_s;
        const QString badSize = "Bad VLC input \"size 9\""_s;
        const QString tooLarge = "VideoWidget: No frame of %1 pixels can be shown"_s;
        rows<QString, QString, QString>(
            {"script", "said", "logged"},
            {{"frame alone", "print frame\\n", black, ""},
             {"frame before its size", red + "frame\\nsize 32 24\\n", "Playing 32x24 red", ""},
             {"bad size", "print size 9\\nframe\\n", black, badSize},
             {"states", "print state 1\\nstate 2\\nstate 3\\nstate 5\\nstate 07\\n", dark, ""},
             {"paused, then a frame", "print state 4\\nframe\\n", "Paused 320x240 black", ""},
             {"error, then a frame", "print state 7\\nframe\\n", "Error 320x240 black", ""},
             // A slash parts two reads.
             {"torn number", "print size 64 4/8\\nframe\\n", "Playing 64x4 black", ""},
             {"torn error", "print state/\\x207\\n", dark, "Bad VLC input \"state\""},
             {"too large", "print size 1 3145729\\nframe\\n/frame\\n", "Playing 1x3145729 dark",
              tooLarge.arg("1 x 3145729")},
             {"too large for an int", "print size 99999999999 99999999999\\nframe\\n",
              "Playing 0x0 dark", tooLarge.arg("0 x 0")},
             {"much noise", "flood 500 " + noise, dark, ""},
             {"NULs", "flood 100000 \\x00", dark, ""},
             {"frames", "flood 1000000 frame\\n", black, ""},
             {"bad lines", "flood 100000 size 9\\n", dark, badSize + badSize},
             {"complaints", "complain 1000000 no key frame\\n|print frame\\n", black, ""},
             {"dies at once", "die", dark, ""},
             {"dies in a line", "print size 64 48\\nfra|die", "Starting 64x48 dark", ""},
             {"ends after an error", "print state 7\\n|exit 0", "Error 320x240 dark", ""},
             {"dies in a pause", "print frame\\nstate 4\\n|die", "Paused 320x240 black", ""},
             {"is stopped", "print frame\\nstate mark\\n|hang", black, ""},
             {"reads nothing", "deaf|print frame\\n", black, ""},
             {"only talks", "deaf|print state mark\\n|flood 2000000000 frame\\n", black, ""}});
    }

    void scripts()
    {
        auto [script, expected, logged] = row<QString, QString, QString>();
        const bool isTorn = script.contains(QLatin1Char('/'));
        script.replace("/"_s, "|wait more|print "_s);
        ScriptedTile tile(script + "|until go \\nstate mark\\n");
        const QProcess &process = tile.process();
        QSignalSpy read(&process, &QProcess::readyReadStandardOutput);
        const LogCapture log;
        QVERIFY(tile.playLive());
        QTRY_VERIFY(!isTorn || !read.isEmpty());
        tile.tell("more"_s);
        QTRY_VERIFY_WITH_TIMEOUT(
            process.state() == QProcess::NotRunning || vlcStateOf(tile) == "mark"_s, 60000);
        QTRY_COMPARE(said(tile), expected);
        const QStringList lines = log.linesOf("Bad VLC"_s) + log.linesOf("VideoWidget: "_s);
        QCOMPARE(lines.mid(0, 2).join(QString()), logged);

        tick(tile);
        QVERIFY(tile.process().readAllStandardError().size() < 1000000); // it doesn't pile up

        // Whatever it did, it can be ended, and its last words are not taken for the next one's,
        // which is heard and seen.
        for (int i = 0; i < 20000 && process.state() == QProcess::Running; ++i)
            tile.setSoundVolume(i); // more than a pipe holds
        tile.setActive(true);
        tile.setSoundVolume(12);
        const qint64 processId = tile.lastProcessId();
        tile.setScript("wait next|" + red + "size 32 24\\nframe\\n");
        QVERIFY(tile.playLive());
        QVERIFY(!tile.isAlive(processId));
        QCOMPARE(stateOf(tile), "Starting"_s);
        QVERIFY(tile.findChild<QWidget *>("spinnerWidget"_s)->isVisible());
        tile.tell("next"_s);
        QTRY_COMPARE(said(tile), "Playing 32x24 red"_s);
        QTRY_COMPARE(tile.orders().mid(tile.orders().size() - 1), QStringList{"volume 12"});
    }

    void positions()
    {
        const FakeClock clock(noon);
        ScriptedTile tile("print time 1000\\ntime 2500\\ntime 1500\\ntime 0\\ntime -40\\n"
                          "time 1.5\\ntime 99999999999\\nstate mark\\n"_s);
        QList<qlonglong> deltas;
        connect(&tile, &VideoWidget::msecsAdded, &tile, [&](qlonglong ms) { deltas << ms; });
        QVERIFY(tile.playArchive(noon, noon.addSecs(600)));
        QTRY_COMPARE(vlcStateOf(tile), "mark"_s);
        QCOMPARE(deltas, QList<qlonglong>({1000, 1500, -1000}));
        QCOMPARE(tile.playbackTime(), noon.addMSecs(1500));
        QCOMPARE(tile.findChild<QLabel *>("cameraTime"_s)->text(), "12:00:01"_s);

        // Live play leaves the speed alone.
        tile.setScript("wait go|print time 1000\\n"_s);
        QVERIFY(tile.playArchive(noon.addDays(-1), noon, 4));
        QVERIFY(tile.playLive());
        QCOMPARE(tile.playbackTime(), noon);
        tile.tell("go"_s);
        QTRY_COMPARE(tile.playbackTime(), noon.addSecs(4));
        QCOMPARE(deltas.last(), 4000);
    }

    /// Tiles by the dozen, and children that are killed.
    void nothingStays()
    {
        const int cycles = qEnvironmentVariableIsSet("ZORVANE_SOAK") ? 500 : 25;
        const LogCapture log; // keeps the console quiet
        ProcessTraces before;
        // The first five warm up.
        for (int cycle = -5; cycle < cycles; ++cycle) {
            if (cycle == 0)
                before = ProcessTraces::now();
            ScriptedTile tile("solid 64 48 ff0000ff|print size 64 48\\n|pace 500 frame\\n"_s);
            QVERIFY(tile.playLive());
            if (cycle == 0)
                QVERIFY(ProcessTraces::now().text() != before.text());
            if (cycle % 2 == 1) {
                ::kill(static_cast<pid_t>(tile.process().processId()), SIGKILL);
                QTRY_COMPARE(tile.process().state(), QProcess::NotRunning);
                QVERIFY(tile.playLive());
            }
            QTRY_COMPARE(stateOf(tile), "Playing"_s);
            QTRY_COMPARE(onScreen(tile).pixelColor(20, 120), QColor(Qt::red));
        }
        QCOMPARE(ProcessTraces::now().text(), before.text());
    }
};

QTEST_MAIN(PlayerProtocolTest)
#include "PlayerProtocolTest.moc"
