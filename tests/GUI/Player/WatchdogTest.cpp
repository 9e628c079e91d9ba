// SPDX-License-Identifier: MIT
#include <QProcess>
#include <QSignalSpy>
#include <QtTest>

#include "GUI/Player/VideoWidget.h"
#include "tests/GUI/Player/TileFixture.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ScriptedChild.h"

using namespace ZorvaneClient;
using GUI::Player::VideoWidget;
using namespace ZorvaneClient::Tests;

namespace {

const QDateTime noon(QDate(2015, 3, 3), QTime(12, 0, 0));

const QStringList playing{"print frame\\n"};
const QStringList failing{"print frame\\nstate 7\\n"};

QString reloadLine(int count)
{
    return QStringLiteral("Camera \"Door\" freezed and reload by timer. Reloads count: %1")
        .arg(count);
}

} // namespace

/// When a tile brings back a child that failed or died, and when it gives up.
class WatchdogTest : public QObject
{
    Q_OBJECT

private slots:
    void errorIsReloadedAfterTenSeconds();
    void reloadsEndAfterThree();
    void deathInPlayIsReloaded();
    void errorInTheArchive();
    void unpausedIdleTileStarts();
};

void WatchdogTest::errorIsReloadedAfterTenSeconds()
{
    FakeClock clock(noon);
    ScriptedChild child({"print frame\\n", "wait fail", "print state 7\\n"});
    VideoWidget tile(localCamera());
    QVERIFY(tile.playLive());
    QTRY_COMPARE(stateOf(tile), QStringLiteral("Playing"));
    clock.advance(100);
    tick(tile);
    QCOMPARE(stateOf(tile), QStringLiteral("Playing"));
    child.tell(QStringLiteral("fail"));
    QTRY_COMPARE(stateOf(tile), QStringLiteral("Error"));

    const LogCapture log;
    clock.advance(10);
    tick(tile);
    QCOMPARE(stateOf(tile), QStringLiteral("Error"));
    QVERIFY(log.linesOf(QStringLiteral("Camera \"Door\" freezed")).isEmpty());
    clock.advance(1);
    child.setScript(playing);
    tick(tile);
    QCOMPARE(log.linesOf(QStringLiteral("Camera \"Door\" freezed")), QStringList{reloadLine(1)});
    QTRY_COMPARE(stateOf(tile), QStringLiteral("Playing"));
    QCOMPARE(child.starts().size(), 2);
    QVERIFY(dumpOf(tile).contains(QLatin1String("reloads count: 1 ")));
    QCOMPARE(tile.playbackTime(), clock.now());
}

void WatchdogTest::reloadsEndAfterThree()
{
    FakeClock clock(noon);
    ScriptedChild child(failing);
    VideoWidget tile(localCamera());
    tile.resize(320, 240);
    tile.show();
    const LogCapture log;
    QVERIFY(tile.playLive());
    for (int reload = 1; reload <= 3; ++reload) {
        QTRY_COMPARE(stateOf(tile), QStringLiteral("Error"));
        clock.advance(11);
        tick(tile);
        QTRY_COMPARE(child.starts().size(), reload + 1);
    }
    QCOMPARE(log.linesOf(QStringLiteral("Camera \"Door\" freezed")),
             QStringList({reloadLine(1), reloadLine(2), reloadLine(3)}));

    // The fourth error is not waited on.
    QTRY_COMPARE(stateOf(tile), QStringLiteral("Error"));
    tick(tile);
    QCOMPARE(stateOf(tile), QStringLiteral("Idle"));
    QVERIFY(showsText(tile, QStringLiteral("No video available")));
    QVERIFY(!ScriptedChild::isAlive(child.lastProcessId()));

    // A start by anybody else counts from the beginning.
    child.setScript(playing);
    QVERIFY(tile.playLive());
    QVERIFY(dumpOf(tile).contains(QLatin1String("reloads count: 0 ")));
}

void WatchdogTest::deathInPlayIsReloaded()
{
    FakeClock clock(noon);
    ScriptedChild child({"print frame\\n", "wait die", "die"});
    VideoWidget tile(localCamera());
    QVERIFY(tile.playLive());
    QTRY_COMPARE(stateOf(tile), QStringLiteral("Playing"));
    clock.advance(11);
    tick(tile);
    child.tell(QStringLiteral("die"));
    const QProcess &process = *tile.findChild<QProcess *>();
    QTRY_COMPARE(process.state(), QProcess::NotRunning);
    QCOMPARE(stateOf(tile), QStringLiteral("Playing"));
    child.setScript(playing);
    tick(tile);
    QTRY_COMPARE(stateOf(tile), QStringLiteral("Playing"));
    QTRY_COMPARE(child.starts().size(), 2);
}

void WatchdogTest::errorInTheArchive()
{
    FakeClock clock(noon);
    ScriptedChild child({"print frame\\n", "wait fail", "print state 7\\n"});
    VideoWidget tile(localCamera());
    tile.resize(320, 240);
    tile.show();
    QVERIFY(tile.playArchive(noon, noon.addSecs(60), 1));
    QTRY_COMPARE(stateOf(tile), QStringLiteral("Playing"));
    child.tell(QStringLiteral("fail"));
    QTRY_COMPARE(stateOf(tile), QStringLiteral("Error"));
    QVERIFY(!ScriptedChild::isAlive(child.lastProcessId()));
    QVERIFY(showsText(tile, QString()));
    clock.advance(1000);
    tick(tile);
    QCOMPARE(stateOf(tile), QStringLiteral("Error"));
    QCOMPARE(child.starts().size(), 1);
}

void WatchdogTest::unpausedIdleTileStarts()
{
    FakeClock clock(noon);
    ScriptedChild child(playing);
    VideoWidget tile(localCamera());
    QVERIFY(tile.playLive());
    QTRY_COMPARE(stateOf(tile), QStringLiteral("Playing"));
    tile.stop();
    tile.unpause();
    QCOMPARE(stateOf(tile), QStringLiteral("Playing"));
    tick(tile);
    QCOMPARE(child.starts().size(), 1);
    clock.advance(11);
    tick(tile);
    QTRY_COMPARE(child.starts().size(), 2);
}

QTEST_MAIN(WatchdogTest)
#include "WatchdogTest.moc"
