// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include <csignal>

#include <sys/resource.h>

#include "API/Camera.h"
#include "App/Settings.h"
#include "GUI/Player/VideoWidget.h"
#include "tests/GUI/Player/TileFixture.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ScriptedChild.h"

using GUI::Player::VideoWidget;

namespace {

const QDateTime noon(QDate(2015, 3, 3), QTime(12, 0, 0));

QString frameFileOf(const ScriptedChild &child)
{
    return QDir::tempPath() + QDir::separator() + child.starts().last().value(1);
}

/// Name that the next tile's frame file will have after that of `last`.
QString nextFrameFile(const QString &last)
{
    const int dash = last.lastIndexOf(QLatin1Char('-')) + 1;
    return last.left(dash) + QString::number(last.mid(dash).toLongLong() + 1);
}

void setProxy(bool use, const QString &host, const QString &user, const QString &password)
{
    App::settings().setValue("proxy/useProxy"_s, use);
    App::settings().setValue("proxy/host"_s, host);
    App::settings().setValue("proxy/port"_s, 3128);
    App::settings().setValue("proxy/username"_s, user);
    App::settings().setValue("proxy/password"_s, password);
}

/// While it lives, and if it is wanted, no file may grow beyond a megabyte.
class SmallFilesOnly
{
public:
    explicit SmallFilesOnly(bool isWanted)
    {
        ::getrlimit(RLIMIT_FSIZE, &previous);
        previousHandler = std::signal(SIGXFSZ, SIG_IGN);
        rlimit limit = previous;
        if (isWanted)
            limit.rlim_cur = 1 << 20;
        ::setrlimit(RLIMIT_FSIZE, &limit);
    }
    ~SmallFilesOnly()
    {
        ::setrlimit(RLIMIT_FSIZE, &previous);
        std::signal(SIGXFSZ, previousHandler);
    }

private:
    rlimit previous;
    void (*previousHandler)(int) = SIG_DFL;
};

} // namespace

/// What a tile and its child say to each other, over real pipes and a real mapped file.
class PlayerProtocolTest : public QObject
{
    Q_OBJECT

private slots:
    void cleanup() { setProxy(false, QString(), QString(), QString()); }

    void arguments_data()
    {
        QTest::addColumn<bool>("isLocal");
        QTest::addColumn<bool>("useProxy");
        QTest::addColumn<QString>("host");
        QTest::addColumn<QString>("user");
        QTest::addColumn<QString>("password");
        QTest::addColumn<QStringList>("proxyArguments");

        const auto row = [](const char *name, const char *host, const char *user,
                            const char *password, const QStringList &arguments,
                            bool isLocal = false, bool useProxy = true) {
            QTest::newRow(name) << isLocal << useProxy << host << user << password << arguments;
        };
        const QString plain = ":http-proxy=http://proxy:3128/"_s;
        const QString ann = ":http-proxy=http://ann@proxy:3128/"_s;
        row("no proxy", "proxy", "", "", {}, false, false);
        row("no host", "", "ann", "secret", {});
        row("host", "proxy", "", "", {plain});
        row("user", "proxy", "ann", "", {ann});
        row("user and password", "proxy", "ann", "s%1 t", {ann, ":http-proxy-pwd=s%1 t"});
        row("password alone", "proxy", "", "secret", {plain, ":http-proxy-pwd=secret"});
        row("user with a marker", "proxy", "a%2", "", {":http-proxy=http://a%2@proxy:3128/"});
        row("host with a marker", "fe80::1%1", "", "", {":http-proxy=http://fe80::1%1:3128/"});
        row("LAN camera", "proxy", "ann", "secret", {}, true);
    }

    void arguments()
    {
        QFETCH(bool, isLocal);
        QFETCH(bool, useProxy);
        QFETCH(QString, host);
        QFETCH(QString, user);
        QFETCH(QString, password);
        QFETCH(QStringList, proxyArguments);

        ScriptedChild child;
        setProxy(useProxy, host, user, password);
        VideoWidget tile(isLocal ? localCamera() : cloudCamera());
        QVERIFY(tile.play("http://host/a b&c"_s));
        QTRY_COMPARE(child.starts().size(), 1);
        const QStringList arguments = child.starts().first();
        QCOMPARE(arguments.value(0), "http://host/a b&c"_s);
        QVERIFY(QRegularExpression("^zorvane-player-\\d+$"_s).match(arguments.value(1)).hasMatch());
        QCOMPARE(arguments.mid(2), proxyArguments);
    }

    void frameFileLivesWithTheTile()
    {
        ScriptedChild child;
        const QStringList before = QDir::temp().entryList(QDir::Files);
        auto tile = std::make_unique<VideoWidget>(localCamera());
        QCOMPARE(QDir::temp().entryList(QDir::Files), before);

        QVERIFY(tile->playLive());
        QTRY_COMPARE(child.starts().size(), 1);
        const QString path = frameFileOf(child);
        QCOMPARE(QFileInfo(path).size(), qint64(12582912));

        QFile mark(path);
        QVERIFY(mark.open(QIODevice::ReadWrite));
        mark.seek(12582911);
        mark.write("x");
        mark.flush();
        QVERIFY(tile->playLive());
        QTRY_COMPARE(child.starts().size(), 2);
        QCOMPARE(frameFileOf(child), path);
        mark.seek(12582911);
        QCOMPARE(mark.read(1), QByteArray("x"));

        tile->stop();
        QVERIFY(QFileInfo::exists(path));
        tile.reset();
        QVERIFY(!QFileInfo::exists(path));
    }

    void frameFileIsFreshAndPrivate()
    {
        ScriptedChild child;
        VideoWidget first(localCamera());
        QVERIFY(first.playLive());
        QTRY_COMPARE(child.starts().size(), 1);
        const auto access = QFileInfo(frameFileOf(child)).permissions();
        QVERIFY(!(access &
                  (QFile::ReadGroup | QFile::ReadOther | QFile::WriteGroup | QFile::WriteOther)));

        // A link that somebody put in the place of the next file is not followed.
        QTemporaryDir folder;
        QFile victim(folder.filePath("victim"_s));
        QVERIFY(victim.open(QIODevice::WriteOnly));
        victim.write("precious");
        victim.close();
        QVERIFY(victim.link(nextFrameFile(frameFileOf(child))));
        VideoWidget second(localCamera());
        QVERIFY(second.playLive());
        QTRY_COMPARE(child.starts().size(), 2);
        QVERIFY(!QFileInfo(frameFileOf(child)).isSymLink());
        QVERIFY(victim.open(QIODevice::ReadOnly));
        QCOMPARE(victim.readAll(), QByteArray("precious"));
    }

    void noFrameFile_data()
    {
        rows<bool, QString>(
            {"isInTheWay", "logged"},
            {
                {"can't be opened", true, "VideoWidget: Could not open SHM file  \""},
                {"can't be that large", false,
                 "VideoWidget: Could not resize SHM file to  12582912  bytes"},
            });
    }

    void noFrameFile()
    {
        const auto [isInTheWay, logged] = row<bool, QString>();
        ScriptedChild child;
        {
            VideoWidget tile(localCamera());
            QVERIFY(tile.playLive());
            QTRY_COMPARE(child.starts().size(), 1);
        }
        const QString path = nextFrameFile(frameFileOf(child));
        VideoWidget tile(localCamera());
        QSignalSpy failed(&tile, &VideoWidget::error);
        {
            const LogCapture log;
            const SmallFilesOnly limit(!isInTheWay);
            if (isInTheWay)
                QVERIFY(QDir().mkdir(path));
            QVERIFY(!tile.playLive());
            QCOMPARE(log.linesOf(logged).size(), 1);
        }
        QCOMPARE(failed.size(), 1);
        QCOMPARE(stateOf(tile), "Idle"_s);
        if (isInTheWay)
            QVERIFY(QDir().rmdir(path));
        QVERIFY(!QFileInfo::exists(path));
        QCOMPARE(child.starts().size(), 1);

        QVERIFY(tile.playLive());
        QTRY_COMPARE(child.starts().size(), 2);
        QCOMPARE(frameFileOf(child), path);
    }

    void pendingCommandsGoFirst()
    {
        ScriptedChild child;
        VideoWidget tile(localCamera());
        tile.setActive(true);
        tile.setSoundVolume(30);
        tile.pause();
        tile.setSoundVolume(70);
        tile.stop(); // keeps what waits
        QVERIFY(tile.playLive());
        QTRY_COMPARE(child.commands(),
                     QStringList({"volume 30", "pause", "volume 70", "volume 70"}));

        // Nothing waits any more.
        child.forgetCommands();
        QVERIFY(tile.playLive());
        QTRY_COMPARE(child.commands(), QStringList{"volume 70"});
    }

    void commandsReachTheChild()
    {
        ScriptedChild child;
        VideoWidget tile(localCamera());
        QVERIFY(tile.playLive());
        tile.pause();
        tile.unpause();
        tile.setActive(true);
        tile.setSoundVolume(40);
        tile.enableSound(false);
        tile.enableSound(true);
        QTRY_COMPARE(child.commands(), QStringList({"volume 0", "pause", "unpause", "volume 40",
                                                    "volume 0", "volume 40"}));
    }

    void effectiveVolume_data()
    {
        rows<bool, bool, QString>({"isActive", "isEnabled", "command"},
                                  {
                                      {"active", true, true, "volume 55"},
                                      {"not active", false, true, "volume 0"},
                                      {"muted", true, false, "volume 0"},
                                      {"neither", false, false, "volume 0"},
                                  });
    }

    void effectiveVolume()
    {
        const auto [isActive, isEnabled, command] = row<bool, bool, QString>();
        ScriptedChild child;
        VideoWidget tile(localCamera());
        tile.setSoundVolume(55);
        tile.enableSound(isEnabled);
        tile.setActive(isActive);
        QVERIFY(tile.playLive());
        QTRY_COMPARE(child.commands(), QStringList({"volume 0", "volume 0", command}));
    }

    void pings()
    {
        ScriptedChild child;
        VideoWidget tile(localCamera());
        tick(tile);
        QVERIFY(tile.playLive());
        tick(tile);
        QTRY_COMPARE(child.commands(), QStringList({"volume 0", "ping"}));
        // The tile's own timer does the same, every two seconds.
        QTRY_COMPARE_WITH_TIMEOUT(child.commands().count("ping"), 2, 15000);
    }

    void lines_data()
    {
        QTest::addColumn<QString>("output");
        QTest::addColumn<QString>("state");
        QTest::addColumn<QString>("resolution");
        QTest::addColumn<QString>("logged");

        const auto row = [](const char *name, const char *output, const char *state,
                            const char *resolution = "320x240", const char *logged = "") {
            QTest::newRow(name) << output << state << resolution << logged;
        };
        row("frame alone", "frame\\n", "Playing");
        row("size", "size 640 480\\n", "Starting", "640x480");
        row("size and frame", "size 64 48\\nframe\\n", "Playing", "64x48");
        row("one number", "size 640\\nframe\\n", "Playing", "320x240",
            "Bad VLC input \"size 640\"");
        row("states that change nothing", "state 1\\nstate 2\\nstate 3\\nstate 5\\nstate 6\\n",
            "Starting");
        row("paused", "state 4\\n", "Paused");
        row("paused, then a frame", "state 4\\nframe\\n", "Paused");
        row("error", "state 7\\n", "Error");
        row("error, then a frame", "state 7\\nframe\\n", "Error");
        row("not quite an error", "state 07\\n", "Starting");
    }

    void lines()
    {
        QFETCH(QString, output);
        QFETCH(QString, state);
        QFETCH(QString, resolution);
        QFETCH(QString, logged);
        ScriptedChild child({"print " + output, "print state mark\\n"});
        VideoWidget tile(localCamera());
        const LogCapture log;
        QVERIFY(tile.playLive());
        QTRY_VERIFY(dumpOf(tile).contains("VLC state: \"mark\""_s));
        QCOMPARE(log.linesOf("Bad VLC input"_s),
                 logged.isEmpty() ? QStringList() : QStringList{logged});
        QCOMPARE(stateOf(tile), state);
        QCOMPARE(resolutionOf(tile), resolution);
    }

    void tornLines_data()
    {
        QTest::addColumn<QString>("first");
        QTest::addColumn<QString>("second");
        QTest::addColumn<QString>("resolution");
        QTest::addColumn<QString>("state");
        const auto row = [](const char *name, const char *first, const char *second,
                            const char *resolution, const char *state) {
            QTest::newRow(name) << first << second << resolution << state;
        };
        row("between lines", "size 64 48\\n", "frame\\n", "64x48", "Playing");
        row("before a line's end", "size 64 48", "\\nframe\\n", "64x48", "Playing");
        row("within a number", "size 64 4", "8\\nframe\\n", "64x4", "Playing");
        row("within a word", "size 64 48\\nfra", "me\\n", "64x48", "Starting");
        row("within an error", "size 64 48\\nstate", " 7\\n", "64x48", "Starting");
    }

    void tornLines()
    {
        QFETCH(QString, first);
        QFETCH(QString, second);
        QFETCH(QString, resolution);
        QFETCH(QString, state);
        // The first half begins with a line that tells when it has been read.
        ScriptedChild child({"print state first\\n" + first, "wait go", "print " + second,
                             "wait more", "print state last\\n"});
        VideoWidget tile(localCamera());
        QVERIFY(tile.playLive());
        QTRY_VERIFY(dumpOf(tile).contains("VLC state: \"first\""_s));
        QSignalSpy read(tile.findChild<QProcess *>(), &QProcess::readyReadStandardOutput);
        child.tell("go"_s);
        QTRY_COMPARE(read.size(), 1);
        child.tell("more"_s);
        QTRY_VERIFY(dumpOf(tile).contains("VLC state: \"last\""_s));
        QCOMPARE(resolutionOf(tile), resolution);
        QCOMPARE(stateOf(tile), state);
    }

    void sizeOfOneReadGoesFirst()
    {
        // The frame was announced ahead of its size, in one read.
        ScriptedChild child({"solid 32 24 ff0000ff", "print frame\\nsize 32 24\\n"});
        VideoWidget tile(localCamera());
        tile.resize(320, 240);
        QVERIFY(tile.playLive());
        QTRY_COMPARE(stateOf(tile), "Playing"_s);
        tile.show();
        // The red pixels reach no further than a picture of that size does.
        QCOMPARE(pixelOf(tile, 160, 230), QColor(Qt::red));
    }

    void positions_data()
    {
        using Deltas = QList<qlonglong>;
        rows<QString, int, QList<qlonglong>, int>(
            {"output", "speed", "deltas", "clock"},
            {
                {"one", "time 1500\\n", 1, Deltas{1500}, 1500},
                {"differences", "time 1000\\ntime 2500\\n", 1, Deltas{1000, 1500}, 2500},
                {"backwards", "time 2000\\ntime 1500\\n", 1, Deltas{2000, -500}, 1500},
                {"speed", "time 1000\\n", 4, Deltas{4000}, 4000},
                {"zero", "time 0\\n", 1, Deltas{}, 0},
                {"negative", "time -40\\n", 1, Deltas{}, 0},
                {"no number", "time soon\\ntime 1.5\\n", 1, Deltas{}, 0},
                {"too large", "time 99999999999999999999\\n", 1, Deltas{}, 0},
            });
    }

    void positions()
    {
        const auto [output, speed, deltas, clock] = row<QString, int, QList<qlonglong>, int>();
        ScriptedChild child({"wait go", "print " + output + "state mark\\n"});
        VideoWidget tile(localCamera());
        QSignalSpy moved(&tile, &VideoWidget::msecsAdded);
        QVERIFY(tile.playArchive(noon, noon.addSecs(600), speed));
        child.tell("go"_s);
        QTRY_VERIFY(dumpOf(tile).contains("VLC state: \"mark\""_s));
        QList<qlonglong> seen;
        for (const QList<QVariant> &arguments : qAsConst(moved))
            seen << arguments.first().toLongLong();
        QCOMPARE(seen, deltas);
        QCOMPARE(tile.playbackTime(), noon.addMSecs(clock));
        QCOMPARE(tile.findChild<QLabel *>("cameraTime"_s)->text(),
                 noon.addMSecs(clock).toString("hh:mm:ss"_s));
    }

    void frameInAPauseRenewsThePause()
    {
        ScriptedChild child({"print frame\\n", "wait paused", "print frame\\nframe\\n"});
        VideoWidget tile(localCamera());
        QVERIFY(tile.playLive());
        QTRY_COMPARE(stateOf(tile), "Playing"_s);
        tile.pause();
        child.tell("paused"_s);
        QTRY_COMPARE(child.commands(), QStringList({"volume 0", "pause", "pause"}));
        QCOMPARE(stateOf(tile), "Paused"_s);
    }
};

QTEST_MAIN(PlayerProtocolTest)
#include "PlayerProtocolTest.moc"
