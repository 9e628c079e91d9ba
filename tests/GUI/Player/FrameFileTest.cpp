// SPDX-License-Identifier: MIT
#include <csignal>

#include <sys/file.h>
#include <sys/mount.h>
#include <sys/resource.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>
#include <utime.h>

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

/// A temporary folder of its own, for as long as it lives.
class OwnTemporaryFolder
{
public:
    OwnTemporaryFolder() { qputenv("TMPDIR", path()); }
    ~OwnTemporaryFolder() { before.isNull() ? qunsetenv("TMPDIR") : qputenv("TMPDIR", before); }
    QByteArray path() const { return QFile::encodeName(folder.path()); }

private:
    const QTemporaryDir folder{"/tmp/zorvane-frames-XXXXXX"_s}; // where others may look
    const QByteArray before = qgetenv("TMPDIR");
};

} // namespace

/// The file through which pictures come, whatever else happens in the temporary folder.
class FrameFileTest : public QObject
{
    Q_OBJECT

private slots:
    void livesWithTheTile()
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

    void itOrTheProgramCannotBe()
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
    void isAnotherCopys()
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
        FakeClock clock(noon);
        for (const bool isHeld : {true, false}) {
            const LogCapture log;
            if (isHeld) {
                QVERIFY(!tile->playLive());
            } else {
                theirs.close();
                clock.advance(29);
                tick(*tile);
                QCOMPARE(stateOf(*tile), "Idle"_s);
                clock.advance(1);
                tick(*tile);
            }
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

    /// Another user's can't be looked into, nor removed from a folder that all share.
    void isAnotherUsers()
    {
        constexpr uid_t nobody = 65534;
        const OwnTemporaryFolder folder;
        if (::geteuid() != 0 || ::chmod(folder.path(), 01777) != 0)
            QSKIP("only root can be somebody else");
        ScriptedTile first;
        QVERIFY(first.playLive());
        QTRY_COMPARE(first.starts().size(), 1);
        QFile theirs(nextFrameFile(first));
        QVERIFY(theirs.open(QIODevice::WriteOnly));
        QVERIFY(theirs.setPermissions(QFile::ReadOwner | QFile::WriteOwner));
        VideoWidget tile(localCamera());
        tile.show();
        FakeClock clock(noon);
        QCOMPARE(::seteuid(nobody), 0);
        const bool plays = tile.playLive();
        QCOMPARE(::seteuid(0), 0);
        QVERIFY(!plays && theirs.exists());
        QVERIFY(showsText(tile, "Used by another copy of the program"_s));
        tile.stop(); // and so it isn't tried again
        clock.advance(30);
        tick(tile);
        QCOMPARE(stateOf(tile), "Idle"_s);
    }

    /// As by what clears temporary folders; meanwhile another copy may have taken the name.
    void hasVanished()
    {
        for (const bool triesOnceMore : {false, true}) {
            QFile theirs;
            {
                ScriptedTile tile("solid 320 240 ff0000ff|print frame"_s);
                for (int start = 1; start <= 2; ++start) {
                    QVERIFY(tile.playsLive());
                    QCOMPARE(onScreen(tile).pixelColor(tile.rect().center()), QColor(Qt::red));
                    theirs.setFileName(frameFileOf(tile));
                    QVERIFY(theirs.remove());
                }
                QVERIFY(theirs.open(QIODevice::WriteOnly));
                QCOMPARE(::flock(theirs.handle(), LOCK_EX), 0);
                if (triesOnceMore) {
                    QVERIFY(!tile.playLive());
                    tile.stop();
                }
            }
            QVERIFY(theirs.remove());
        }
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
        const OwnTemporaryFolder folder;
        const QByteArray place = folder.path();
        if (::mount("small", place, "tmpfs", 0, "size=1m") != 0)
            QSKIP("only root can mount a small folder");
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
        QCOMPARE(::umount(place), 0);
    }
};

QTEST_MAIN(FrameFileTest)
#include "FrameFileTest.moc"
