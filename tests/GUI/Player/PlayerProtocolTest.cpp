// SPDX-License-Identifier: MIT
#include <csignal>

#include "App/Settings.h"
#include "tests/GUI/Player/TileFixture.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ProcessTraces.h"

using GUI::Player::VideoWidget;

namespace {

const QDateTime noon(QDate(2015, 3, 3), QTime(12, 0, 0));

/// Fills a picture with red, and begins to tell of it.
const QString red = "solid 32 24 ff0000ff|print "_s;

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
