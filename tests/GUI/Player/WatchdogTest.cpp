// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "GUI/Player/VideoWidget.h"
#include "tests/GUI/Player/TileFixture.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ScriptedChild.h"

using GUI::Player::VideoWidget;

namespace {

const QDateTime noon(QDate(2015, 3, 3), QTime(12, 0, 0));

const QStringList playing{"print frame\\n"};
const QStringList failing{"print frame\\nstate 7\\n"};

QString reloadLine(int count)
{
    return "Camera \"Door\" freezed and reload by timer. Reloads count: %1"_s.arg(count);
}

} // namespace

/// When a tile brings back a child that failed or died, and when it gives up.
class WatchdogTest : public QObject
{
    Q_OBJECT

private slots:
    void errorIsReloadedAfterTenSeconds()
    {
        FakeClock clock(noon);
        ScriptedChild child({"print frame\\n", "wait fail", "print state 7\\n"});
        VideoWidget tile(localCamera());
        QVERIFY(tile.playLive());
        QTRY_COMPARE(stateOf(tile), "Playing"_s);
        clock.advance(100);
        tick(tile);
        QCOMPARE(stateOf(tile), "Playing"_s);
        child.tell("fail"_s);
        QTRY_COMPARE(stateOf(tile), "Error"_s);

        const LogCapture log;
        clock.advance(10);
        tick(tile);
        QCOMPARE(stateOf(tile), "Error"_s);
        QVERIFY(log.linesOf("Camera \"Door\" freezed"_s).isEmpty());
        clock.advance(1);
        child.setScript(playing);
        tick(tile);
        QCOMPARE(log.linesOf("Camera \"Door\" freezed"_s), QStringList{reloadLine(1)});
        QTRY_COMPARE(stateOf(tile), "Playing"_s);
        QCOMPARE(child.starts().size(), 2);
        QVERIFY(dumpOf(tile).contains("reloads count: 1 "_s));
        QCOMPARE(tile.playbackTime(), clock.now());
    }

    void reloadsEndAfterThree()
    {
        FakeClock clock(noon);
        ScriptedChild child(failing);
        VideoWidget tile(localCamera());
        tile.resize(320, 240);
        tile.show();
        const LogCapture log;
        QVERIFY(tile.playLive());
        for (int reload = 1; reload <= 3; ++reload) {
            QTRY_COMPARE(stateOf(tile), "Error"_s);
            clock.advance(11);
            tick(tile);
            QTRY_COMPARE(child.starts().size(), reload + 1);
        }
        QCOMPARE(log.linesOf("Camera \"Door\" freezed"_s),
                 QStringList({reloadLine(1), reloadLine(2), reloadLine(3)}));

        // The fourth error is not waited on.
        QTRY_COMPARE(stateOf(tile), "Error"_s);
        tick(tile);
        QCOMPARE(stateOf(tile), "Idle"_s);
        QVERIFY(showsText(tile, "No video available"_s));
        QVERIFY(!ScriptedChild::isAlive(child.lastProcessId()));

        // A start by anybody else counts from the beginning.
        child.setScript(playing);
        QVERIFY(tile.playLive());
        QVERIFY(dumpOf(tile).contains("reloads count: 0 "_s));
    }

    void deathInPlayIsReloaded()
    {
        FakeClock clock(noon);
        ScriptedChild child({"print frame\\n", "wait die", "die"});
        VideoWidget tile(localCamera());
        QVERIFY(tile.playLive());
        QTRY_COMPARE(stateOf(tile), "Playing"_s);
        clock.advance(11);
        tick(tile);
        child.tell("die"_s);
        const QProcess &process = *tile.findChild<QProcess *>();
        QTRY_COMPARE(process.state(), QProcess::NotRunning);
        QCOMPARE(stateOf(tile), "Playing"_s);
        child.setScript(playing);
        tick(tile);
        QTRY_COMPARE(stateOf(tile), "Playing"_s);
        QTRY_COMPARE(child.starts().size(), 2);
    }

    void errorInTheArchive()
    {
        FakeClock clock(noon);
        ScriptedChild child({"print frame\\n", "wait fail", "print state 7\\n"});
        VideoWidget tile(localCamera());
        tile.resize(320, 240);
        tile.show();
        QVERIFY(tile.playArchive(noon, noon.addSecs(60), 1));
        QTRY_COMPARE(stateOf(tile), "Playing"_s);
        child.tell("fail"_s);
        QTRY_COMPARE(stateOf(tile), "Error"_s);
        QVERIFY(!ScriptedChild::isAlive(child.lastProcessId()));
        QVERIFY(showsText(tile, QString()));
        clock.advance(1000);
        tick(tile);
        QCOMPARE(stateOf(tile), "Error"_s);
        QCOMPARE(child.starts().size(), 1);
    }

    void unpausedIdleTileStarts()
    {
        FakeClock clock(noon);
        ScriptedChild child(playing);
        VideoWidget tile(localCamera());
        QVERIFY(tile.playLive());
        QTRY_COMPARE(stateOf(tile), "Playing"_s);
        tile.stop();
        tile.unpause();
        QCOMPARE(stateOf(tile), "Playing"_s);
        tick(tile);
        QCOMPARE(child.starts().size(), 1);
        clock.advance(11);
        tick(tile);
        QTRY_COMPARE(child.starts().size(), 2);
    }
};

QTEST_MAIN(WatchdogTest)
#include "WatchdogTest.moc"
