// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "App/Environment.h"
#include "GUI/Player/VideoWidget.h"
#include "tests/GUI/Player/TileFixture.h"
#include "tests/support/LogCapture.h"
#include "tests/support/ScriptedChild.h"

using GUI::Player::VideoWidget;

/// A child that talks nonsense, dies or hangs: the tile lives on.
class FaultyPlayerTest : public QObject
{
    Q_OBJECT

private slots:
    void sizesThatCannotBe_data()
    {
        rows<QString>({"size"}, {
                                    {"one pixel too many", "1 3145729"},
                                    {"beyond an int", "99999999999 99999999999"},
                                    {"negative", "-640 480"},
                                    {"nothing", "0 0"},
                                });
    }

    void sizesThatCannotBe()
    {
        const auto [size] = row<QString>();
        ScriptedChild child({"print size " + size + "\\nframe\\n", "wait more",
                             "print frame\\nstate mark\\n", "wait good", "solid 32 24 ff0000ff",
                             "print size 32 24\\nframe\\nstate good\\n"});
        VideoWidget tile(localCamera());
        tile.resize(320, 240);
        tile.show();
        const LogCapture log;
        QVERIFY(tile.playLive());
        QTRY_COMPARE(stateOf(tile), "Playing"_s);
        QCOMPARE(pixelOf(tile, 160, 120), QColor(25, 25, 29));
        child.tell("more"_s);
        QTRY_VERIFY(dumpOf(tile).contains("VLC state: \"mark\""_s));
        QCOMPARE(log.linesOf("VideoWidget: No frame of"_s).size(), 1);

        child.tell("good"_s);
        QTRY_VERIFY(dumpOf(tile).contains("VLC state: \"good\""_s));
        QCOMPARE(pixelOf(tile, 160, 120), QColor(Qt::red));
    }

    void garbageAndFloods_data()
    {
        QRandomGenerator generator(20150303);
        QString noise;
        for (int i = 0; i < 4000; ++i)
            noise += "\\x%1"_s.arg(generator.bounded(256), 2, 16, QLatin1Char('0'));
        rows<QString>({"line"}, {
                                    {"noise", "print " + noise},
                                    {"much noise", "flood 500 " + noise},
                                    {"NULs", "flood 100000 \\x00"},
                                    {"line without end", "flood 300000 abcdefgh"},
                                    {"size without end", "flood 300000 size 1 "},
                                    {"blanks", "flood 300000 \\x20"},
                                    {"empty lines", "flood 1000000 \\n"},
                                    {"frames", "flood 1000000 frame\\n"},
                                    {"sizes", "flood 1000000 size 64 48\\n"},
                                    {"states", "flood 1000000 state 3\\n"},
                                    {"positions", "flood 300000 time 5\\n"},
                                    {"bad lines", "flood 300000 size 9\\n"},
                                });
    }

    void garbageAndFloods()
    {
        const auto [line] = row<QString>();
        ScriptedChild child({line, "until go \\nstate after\\n", "solid 32 24 ff0000ff",
                             "print size 32 24\\nframe\\nstate good\\n"});
        VideoWidget tile(localCamera());
        tile.resize(320, 240);
        tile.show();
        const LogCapture log; // keeps the console quiet
        QVERIFY(tile.playLive());
        QTRY_VERIFY_WITH_TIMEOUT(dumpOf(tile).contains("VLC state: \"after\""_s), 60000);
        child.tell("go"_s);
        QTRY_VERIFY(dumpOf(tile).contains("VLC state: \"good\""_s));
        QCOMPARE(stateOf(tile), "Playing"_s);
        QCOMPARE(pixelOf(tile, 160, 120), QColor(Qt::red));
    }

    void complaintsAreLoggedOnDemand()
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

    void complaintsDoNotPileUp()
    {
        ScriptedChild child({"complain 1000000 no key frame\\n", "print frame\\n"});
        VideoWidget tile(localCamera());
        QVERIFY(tile.playLive());
        QTRY_COMPARE_WITH_TIMEOUT(stateOf(tile), "Playing"_s, 30000);
        QProcess &process = *tile.findChild<QProcess *>();
        tick(tile);
        QVERIFY(process.readAllStandardError().size() < 1000000);
    }

    void deathAtEveryPoint_data()
    {
        rows<QStringList, QString>(
            {"script", "state"},
            {
                {"at once", QStringList{"die"}, "Starting"},
                {"with a code", QStringList{"exit 2"}, "Starting"},
                {"after a size", QStringList{"print size 64 48\\n", "die"}, "Starting"},
                {"in a line", QStringList{"print size 64 48\\nfra", "die"}, "Starting"},
                {"after a frame", QStringList{"print frame\\n", "die"}, "Playing"},
                {"in a later line", QStringList{"print frame\\nsta", "die"}, "Playing"},
                {"after an error", QStringList{"print state 7\\n", "exit 0"}, "Error"},
                {"in a pause", QStringList{"print frame\\nstate 4\\n", "die"}, "Paused"},
                {"in a flood", QStringList{"flood 20000 frame\\n", "die"}, "Playing"},
            });
    }

    void deathAtEveryPoint()
    {
        const auto [script, state] = row<QStringList, QString>();
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
        QTRY_COMPARE(stateOf(tile), "Playing"_s);
        QTRY_COMPARE(child.commands(), QStringList({"volume 12", "volume 12"}));
    }

    void programThatCannotStart_data()
    {
        rows<QString>({"program"},
                      {
                          {"missing", "/nowhere/player"},
                          {"folder", QDir::tempPath()},
                          {"not executable", QStringLiteral(ZORVANE_SOURCE_DIR "/LICENSE")},
                      });
    }

    void programThatCannotStart()
    {
        const auto [program] = row<QString>();
        ScriptedChild child({"print frame\\n"});
        App::Environment::setPlayerProgram(program);
        VideoWidget tile(localCamera());
        QVERIFY(tile.playLive());
        QCOMPARE(stateOf(tile), "Starting"_s);
        tick(tile);
        QCOMPARE(stateOf(tile), "Starting"_s);

        App::Environment::setPlayerProgram(ScriptedChild::program());
        QVERIFY(tile.playLive());
        QTRY_COMPARE(stateOf(tile), "Playing"_s);
    }

    void hungChildIsEnded_data()
    {
        rows<QStringList>({"script"},
                          {
                              {"stopped", QStringList{"print frame\\n", "hang"}},
                              {"reads nothing", QStringList{"deaf", "print frame\\n"}},
                              {"floods", QStringList{"deaf", "flood 2000000000 frame\\n"}},
                          });
    }

    void hungChildIsEnded()
    {
        const auto [script] = row<QStringList>();
        ScriptedChild child(script);
        VideoWidget tile(localCamera());
        QVERIFY(tile.playLive());
        QTRY_COMPARE(stateOf(tile), "Playing"_s);
        const qint64 processId = child.lastProcessId();
        // More than a pipe holds.
        for (int i = 0; i < 20000; ++i)
            tile.setSoundVolume(i);
        tile.stop();
        QVERIFY(!ScriptedChild::isAlive(processId));
        QCOMPARE(stateOf(tile), "Idle"_s);
    }
};

QTEST_MAIN(FaultyPlayerTest)
#include "FaultyPlayerTest.moc"
