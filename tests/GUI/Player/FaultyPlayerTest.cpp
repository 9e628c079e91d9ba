// SPDX-License-Identifier: MIT
#include <QDir>
#include <QProcess>
#include <QRandomGenerator>
#include <QSignalSpy>
#include <QtTest>

#include "App/Environment.h"
#include "GUI/Player/VideoWidget.h"
#include "tests/GUI/Player/TileFixture.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ScriptedChild.h"

using namespace ZorvaneClient;
using GUI::Player::VideoWidget;
using namespace ZorvaneClient::Tests;

/// A child that talks nonsense, dies or hangs: the tile lives on.
class FaultyPlayerTest : public QObject
{
    Q_OBJECT

private slots:
    void sizesThatCannotBe_data();
    void sizesThatCannotBe();
    void garbageAndFloods_data();
    void garbageAndFloods();
    void complaintsAreLoggedOnDemand();
    void complaintsDoNotPileUp();
    void deathAtEveryPoint_data();
    void deathAtEveryPoint();
    void programThatCannotStart_data();
    void programThatCannotStart();
    void hungChildIsEnded_data();
    void hungChildIsEnded();
};

void FaultyPlayerTest::sizesThatCannotBe_data()
{
    QTest::addColumn<QString>("size");
    QTest::newRow("one pixel too many") << "1 3145729";
    QTest::newRow("beyond an int") << "99999999999 99999999999";
    QTest::newRow("negative") << "-640 480";
    QTest::newRow("nothing") << "0 0";
}

void FaultyPlayerTest::sizesThatCannotBe()
{
    QFETCH(QString, size);
    ScriptedChild child({"print size " + size + "\\nframe\\n", "wait more",
                         "print frame\\nstate mark\\n", "wait good", "solid 32 24 ff0000ff",
                         "print size 32 24\\nframe\\nstate good\\n"});
    VideoWidget tile(localCamera());
    tile.resize(320, 240);
    tile.show();
    const LogCapture log;
    QVERIFY(tile.playLive());
    QTRY_COMPARE(stateOf(tile), QStringLiteral("Playing"));
    QCOMPARE(pixelOf(tile, 160, 120), QColor(25, 25, 29));
    child.tell(QStringLiteral("more"));
    QTRY_VERIFY(dumpOf(tile).contains(QLatin1String("VLC state: \"mark\"")));
    QCOMPARE(log.linesOf(QStringLiteral("VideoWidget: No frame of")).size(), 1);

    child.tell(QStringLiteral("good"));
    QTRY_VERIFY(dumpOf(tile).contains(QLatin1String("VLC state: \"good\"")));
    QCOMPARE(pixelOf(tile, 160, 120), QColor(Qt::red));
}

void FaultyPlayerTest::garbageAndFloods_data()
{
    QTest::addColumn<QString>("line");
    QRandomGenerator generator(20150303);
    QString noise;
    for (int i = 0; i < 4000; ++i)
        noise += QStringLiteral("\\x%1").arg(generator.bounded(256), 2, 16, QLatin1Char('0'));
    QTest::newRow("noise") << "print " + noise;
    QTest::newRow("much noise") << "flood 500 " + noise;
    QTest::newRow("NULs") << "flood 100000 \\x00";
    QTest::newRow("line without end") << "flood 300000 abcdefgh";
    QTest::newRow("size without end") << "flood 300000 size 1 ";
    QTest::newRow("blanks") << "flood 300000 \\x20";
    QTest::newRow("empty lines") << "flood 1000000 \\n";
    QTest::newRow("frames") << "flood 1000000 frame\\n";
    QTest::newRow("sizes") << "flood 1000000 size 64 48\\n";
    QTest::newRow("states") << "flood 1000000 state 3\\n";
    QTest::newRow("positions") << "flood 300000 time 5\\n";
    QTest::newRow("bad lines") << "flood 300000 size 9\\n";
}

void FaultyPlayerTest::garbageAndFloods()
{
    QFETCH(QString, line);
    ScriptedChild child({line, "until go \\nstate after\\n", "solid 32 24 ff0000ff",
                         "print size 32 24\\nframe\\nstate good\\n"});
    VideoWidget tile(localCamera());
    tile.resize(320, 240);
    tile.show();
    const LogCapture log; // keeps the console quiet
    QVERIFY(tile.playLive());
    QTRY_VERIFY_WITH_TIMEOUT(dumpOf(tile).contains(QLatin1String("VLC state: \"after\"")), 60000);
    child.tell(QStringLiteral("go"));
    QTRY_VERIFY(dumpOf(tile).contains(QLatin1String("VLC state: \"good\"")));
    QCOMPARE(stateOf(tile), QStringLiteral("Playing"));
    QCOMPARE(pixelOf(tile, 160, 120), QColor(Qt::red));
}

void FaultyPlayerTest::complaintsAreLoggedOnDemand()
{
    ScriptedChild child({"complain 1 no key frame\\n", "print frame\\n"});
    VideoWidget tile(localCamera());
    QSignalSpy complained(tile.findChild<QProcess *>(), &QProcess::readyReadStandardError);
    QVERIFY(tile.playLive());
    QTRY_COMPARE(complained.size(), 1);
    tick(tile);
    const LogCapture log;
    QVERIFY(QMetaObject::invokeMethod(&tile, "readPlayerErrors"));
    QCOMPARE(log.lines(), QStringList{"STDERR MESSAGE FROM Door CAMERA: no key frame"});
}

void FaultyPlayerTest::complaintsDoNotPileUp()
{
    ScriptedChild child({"complain 1000000 no key frame\\n", "print frame\\n"});
    VideoWidget tile(localCamera());
    QVERIFY(tile.playLive());
    QTRY_COMPARE_WITH_TIMEOUT(stateOf(tile), QStringLiteral("Playing"), 30000);
    QProcess &process = *tile.findChild<QProcess *>();
    tick(tile);
    QVERIFY(process.readAllStandardError().size() < 1000000);
}

void FaultyPlayerTest::deathAtEveryPoint_data()
{
    QTest::addColumn<QStringList>("script");
    QTest::addColumn<QString>("state");
    QTest::newRow("at once") << QStringList{"die"} << "Starting";
    QTest::newRow("with a code") << QStringList{"exit 2"} << "Starting";
    QTest::newRow("after a size") << QStringList{"print size 64 48\\n", "die"} << "Starting";
    QTest::newRow("in a line") << QStringList{"print size 64 48\\nfra", "die"} << "Starting";
    QTest::newRow("after a frame") << QStringList{"print frame\\n", "die"} << "Playing";
    QTest::newRow("in a later line") << QStringList{"print frame\\nsta", "die"} << "Playing";
    QTest::newRow("after an error") << QStringList{"print state 7\\n", "exit 0"} << "Error";
    QTest::newRow("in a pause") << QStringList{"print frame\\nstate 4\\n", "die"} << "Paused";
    QTest::newRow("in a flood") << QStringList{"flood 20000 frame\\n", "die"} << "Playing";
}

void FaultyPlayerTest::deathAtEveryPoint()
{
    QFETCH(QStringList, script);
    QFETCH(QString, state);
    ScriptedChild child(script);
    VideoWidget tile(localCamera());
    tile.show();
    QVERIFY(tile.playLive());
    const QProcess &process = *tile.findChild<QProcess *>();
    QTRY_COMPARE(process.state(), QProcess::NotRunning);
    QTRY_COMPARE(stateOf(tile), state);

    // What is said to the dead waits for the next one.
    tile.setActive(true);
    tile.setSoundVolume(12);
    tick(tile);
    tile.grab();
    child.setScript({"print frame\\n"});
    child.forgetCommands();
    QVERIFY(tile.playLive());
    QTRY_COMPARE(stateOf(tile), QStringLiteral("Playing"));
    QTRY_COMPARE(child.commands(), QStringList({"volume 12", "volume 12"}));
}

void FaultyPlayerTest::programThatCannotStart_data()
{
    QTest::addColumn<QString>("program");
    QTest::newRow("missing") << "/nowhere/player";
    QTest::newRow("folder") << QDir::tempPath();
    QTest::newRow("not executable") << QStringLiteral(ZORVANE_SOURCE_DIR "/LICENSE");
}

void FaultyPlayerTest::programThatCannotStart()
{
    QFETCH(QString, program);
    ScriptedChild child({"print frame\\n"});
    App::Environment::setPlayerProgram(program);
    VideoWidget tile(localCamera());
    QVERIFY(tile.playLive());
    QCOMPARE(stateOf(tile), QStringLiteral("Starting"));
    tick(tile);
    QCOMPARE(stateOf(tile), QStringLiteral("Starting"));

    App::Environment::setPlayerProgram(ScriptedChild::program());
    QVERIFY(tile.playLive());
    QTRY_COMPARE(stateOf(tile), QStringLiteral("Playing"));
}

void FaultyPlayerTest::hungChildIsEnded_data()
{
    QTest::addColumn<QStringList>("script");
    QTest::newRow("stopped") << QStringList{"print frame\\n", "hang"};
    QTest::newRow("reads nothing") << QStringList{"deaf", "print frame\\n"};
    QTest::newRow("floods") << QStringList{"deaf", "flood 2000000000 frame\\n"};
}

void FaultyPlayerTest::hungChildIsEnded()
{
    QFETCH(QStringList, script);
    ScriptedChild child(script);
    VideoWidget tile(localCamera());
    QVERIFY(tile.playLive());
    QTRY_COMPARE(stateOf(tile), QStringLiteral("Playing"));
    const qint64 processId = child.lastProcessId();
    // More than a pipe holds.
    for (int i = 0; i < 20000; ++i)
        tile.setSoundVolume(i);
    tile.stop();
    QVERIFY(!ScriptedChild::isAlive(processId));
    QCOMPARE(stateOf(tile), QStringLiteral("Idle"));
}

QTEST_MAIN(FaultyPlayerTest)
#include "FaultyPlayerTest.moc"
