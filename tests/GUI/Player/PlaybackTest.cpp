// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "API/Camera.h"
#include "GUI/Player/VideoWidget.h"
#include "tests/GUI/Player/TileFixture.h"
#include "tests/support/LogCapture.h"
#include "tests/support/MisbehavingServer.h"
#include "tests/support/ScriptedChild.h"

using GUI::Player::VideoWidget;

namespace {

const QDateTime noon(QDate(2015, 3, 3), QTime(12, 0, 0));

const QStringList playing{"print frame\\n"};
const QStringList failing{"print frame\\nstate 7\\n"};

/// A LAN camera that has recorded from 12:00 to 12:10 and from 12:20 to 12:30.
API::CameraPtr cameraWithRecords()
{
    const auto record = [](const QDateTime &start, int minutes) {
        // Both ends come out one second later than they are sent.
        return QByteArray("{\"startTime\":") +
               QByteArray::number(start.addSecs(-1).toMSecsSinceEpoch()) +
               ",\"duration\":" + QByteArray::number(minutes * 60000) + "}";
    };
    MisbehavingServer server;
    server.setReply(
        WireReply::json("[" + record(noon, 10) + "," + record(noon.addSecs(20 * 60), 10) + "]"));
    if (!server.start())
        qFatal("no server");
    const API::CameraPtr camera = localCamera();
    camera->setId("127.0.0.1:%1"_s.arg(server.port()), 3);
    QSignalSpy changed(camera.data(), &API::Camera::recordsChanged);
    camera->updateTimeline(noon.date());
    changed.wait();
    return camera;
}

/// The key `name` of the URL that the last child got.
QString urlKey(const ScriptedChild &child, const QString &name)
{
    const QString url = child.starts().last().first();
    return QRegularExpression("[?&]%1=([^&]*)"_s.arg(name)).match(url).captured(1);
}

} // namespace

/// When a tile starts and ends its child, and what it shows meanwhile.
class PlaybackTest : public QObject
{
    Q_OBJECT

private slots:
    void refusals_data()
    {
        const QVariantMap none;
        rows<QVariantMap, bool, QString>(
            {"changes", "archive", "text"},
            {
                {"offline", QVariantMap{{"online", false}}, false, "Camera Gate is offline"},
                {"offline, archive", QVariantMap{{"online", false}}, true,
                 "Camera Gate is offline"},
                {"unpaid", QVariantMap{{"services", none}}, false, "Camera Gate is not paid for"},
                {"both", QVariantMap{{"services", none}, {"online", false}}, false,
                 "Camera Gate is not paid for and offline"},
                {"no live right", QVariantMap{{"rights", QStringList{"archive"}}}, false,
                 "Live is not shared"},
                {"no archive right", QVariantMap{{"rights", QStringList{"live"}}}, true,
                 "Archive is not shared"},
            });
    }

    void refusals()
    {
        const auto [changes, archive, text] = row<QVariantMap, bool, QString>();
        ScriptedChild child(playing);
        VideoWidget tile(cloudCamera(changes));
        tile.resize(320, 240);
        tile.show();
        QVERIFY(!(archive ? tile.playArchive(noon, noon.addSecs(60), 2) : tile.playLive()));
        QVERIFY(showsText(tile, text));
        QCOMPARE(stateOf(tile), "Idle"_s);
        QVERIFY(child.starts().isEmpty());
    }

    void refusalLeavesTheChild()
    {
        ScriptedChild child(playing);
        const API::CameraPtr camera = localCamera();
        VideoWidget tile(camera);
        tile.setArchiveMode(true); // or else the flag stops the tile
        QVERIFY(tile.play("http://host/"_s));
        QTRY_COMPARE(stateOf(tile), "Playing"_s);
        camera->setFlags(API::CameraOffline);
        QVERIFY(!tile.play("http://host/"_s));
        QCOMPARE(stateOf(tile), "Playing"_s);
        QVERIFY(ScriptedChild::isAlive(child.lastProcessId()));
        QCOMPARE(child.starts().size(), 1);
    }

    void unpaidCameraPlaysItsArchive()
    {
        ScriptedChild child(playing);
        VideoWidget tile(cloudCamera({{"services", QVariantMap()}}));
        QVERIFY(tile.playArchive(noon, noon.addSecs(60), 1));
        QTRY_COMPARE(stateOf(tile), "Playing"_s);
    }

    void commandsSetTheState_data()
    {
        rows<bool, bool, QString>({"hasChild", "isPause", "state"},
                                  {
                                      {"pause", true, true, "Paused"},
                                      {"unpause", true, false, "Playing"},
                                      {"pause without a child", false, true, "Paused"},
                                      {"unpause without a child", false, false, "Playing"},
                                  });
    }

    void commandsSetTheState()
    {
        const auto [hasChild, isPause, state] = row<bool, bool, QString>();
        ScriptedChild child;
        VideoWidget tile(localCamera());
        if (hasChild)
            QVERIFY(tile.playLive());
        QCOMPARE(stateOf(tile), hasChild ? "Starting"_s : "Idle"_s);
        if (isPause)
            tile.pause();
        else
            tile.unpause();
        QCOMPARE(stateOf(tile), state);
    }

    void stopEndsTheChild()
    {
        ScriptedChild child(playing);
        VideoWidget tile(localCamera());
        tile.resize(320, 240);
        tile.show();
        tile.stop();
        QVERIFY(tile.playLive());
        QTRY_COMPARE(stateOf(tile), "Playing"_s);
        const qint64 processId = child.lastProcessId();
        tile.stop();
        QCOMPARE(stateOf(tile), "Idle"_s);
        QVERIFY(!ScriptedChild::isAlive(processId));
        QVERIFY(showsText(tile, QString()));
    }

    void spinnerWaitsForTheFirstFrame()
    {
        ScriptedChild child({"wait go", "print frame\\n"});
        VideoWidget tile(localCamera());
        tile.show();
        const QWidget &spinner = *tile.findChild<QWidget *>("spinnerWidget"_s);
        QVERIFY(spinner.isHidden());
        QVERIFY(tile.playLive());
        QVERIFY(!spinner.isHidden());
        child.tell("go"_s);
        QTRY_VERIFY(spinner.isHidden());
        QCOMPARE(stateOf(tile), "Playing"_s);
    }

    void isPlaying_data()
    {
        rows<QStringList, QString, bool, bool>(
            {"script", "state", "live", "archive"},
            {
                {"starting", QStringList{}, "Starting", false, true},
                {"playing", playing, "Playing", true, true},
                {"paused", QStringList{"print state 4\\n"}, "Paused", false, true},
                {"error", failing, "Error", false, false},
            });
    }

    void isPlaying()
    {
        const auto [script, state, live, archive] = row<QStringList, QString, bool, bool>();
        ScriptedChild child(script);
        VideoWidget tile(localCamera());
        QVERIFY(!tile.isPlaying());
        QVERIFY(tile.playLive());
        QTRY_COMPARE(stateOf(tile), state);
        QCOMPARE(tile.isPlaying(), live);
        QVERIFY(tile.playArchive(noon, noon.addSecs(60), 1));
        QTRY_COMPARE(stateOf(tile), state);
        QCOMPARE(tile.isPlaying(), archive);
    }

    void archiveOfARecord_data()
    {
        rows<int, bool>({"minute", "plays"}, {
                                                 {"before all", -1, false},
                                                 {"begin", 0, true},
                                                 {"within", 5, true},
                                                 {"end, in a gap", 10, false},
                                                 {"gap", 15, false},
                                                 {"second record", 20, true},
                                                 {"end of all", 30, false},
                                                 {"another day", 24 * 60, false},
                                             });
    }

    void archiveOfARecord()
    {
        const auto [minute, plays] = row<int, bool>();
        ScriptedChild child(playing);
        VideoWidget tile(cameraWithRecords());
        tile.resize(320, 240);
        tile.show();
        const QDateTime start = noon.addSecs(minute * 60);
        QCOMPARE(tile.playArchive(start, 4), plays);
        if (!plays) {
            QVERIFY(showsText(tile, "No records"_s));
            QVERIFY(child.starts().isEmpty());
            return;
        }
        QTRY_COMPARE(child.starts().size(), 1);
        QCOMPARE(urlKey(child, "startTime"_s).toLongLong(), start.toSecsSinceEpoch());
        QCOMPARE(urlKey(child, "speed"_s), "4"_s);
        QCOMPARE(tile.playbackTime(), start);
    }

    void speedStaysInLivePlay()
    {
        const FakeClock clock(noon);
        ScriptedChild child({"wait go", "print time 1000\\n"});
        VideoWidget tile(localCamera());
        QVERIFY(tile.playArchive(noon.addDays(-1), noon, 4));
        QVERIFY(tile.playLive());
        QCOMPARE(tile.playbackTime(), noon);
        child.tell("go"_s);
        QTRY_COMPARE(tile.playbackTime(), noon.addSecs(4));
    }

    void quality_data()
    {
        rows<int, bool, QString>({"quality", "archive", "asked"}, {
                                                                      {"the same", 2, false, ""},
                                                                      {"too low", -1, false, ""},
                                                                      {"too high", 3, false, ""},
                                                                      {"live", 0, false, "0"},
                                                                      {"archive", 1, true, "1"},
                                                                  });
    }

    void quality()
    {
        const auto [quality, archive, asked] = row<int, bool, QString>();
        ScriptedChild child(playing);
        VideoWidget tile(localCamera());
        QVERIFY(archive ? tile.playArchive(noon, noon.addSecs(60), 1) : tile.playLive());
        QTRY_COMPARE(child.starts().size(), 1);
        QCOMPARE(urlKey(child, "q"_s), "2"_s);
        tile.setQuality(quality);
        if (asked.isEmpty()) {
            tile.playLive(); // the start after what didn't happen
            QTRY_COMPARE(child.starts().size(), 2);
            QCOMPARE(urlKey(child, "q"_s), "2"_s);
            return;
        }
        QTRY_COMPARE(child.starts().size(), 2);
        QCOMPARE(urlKey(child, "q"_s), asked);
        QCOMPARE(child.starts().last().first().contains("/flv/archive"_s), archive);
    }

    void qualityGoesOnWhereTheArchiveWas()
    {
        ScriptedChild child({"print time 30000\\nframe\\n"});
        VideoWidget tile(localCamera());
        QVERIFY(tile.playArchive(noon, noon.addSecs(600), 2));
        QTRY_COMPARE(tile.playbackTime(), noon.addSecs(60));
        child.setScript({});
        tile.setQuality(0);
        QTRY_COMPARE(child.starts().size(), 2);
        QCOMPARE(urlKey(child, "startTime"_s).toLongLong(), noon.addSecs(60).toSecsSinceEpoch());
        QCOMPARE(urlKey(child, "speed"_s), "2"_s);

        // A tile that plays nothing only remembers.
        tile.stop();
        tile.setQuality(1);
        QCOMPARE(stateOf(tile), "Idle"_s);
        QVERIFY(tile.playArchive(noon, noon.addSecs(600)));
        QTRY_COMPARE(child.starts().size(), 3);
        QCOMPARE(urlKey(child, "q"_s), "1"_s);
        QCOMPARE(urlKey(child, "speed"_s), "1"_s);
    }

    void flagsInLivePlay()
    {
        ScriptedChild child(playing);
        const API::CameraPtr camera = localCamera();
        VideoWidget tile(camera);
        tile.resize(320, 240);
        tile.show();
        QVERIFY(tile.playLive());
        QTRY_COMPARE(stateOf(tile), "Playing"_s);
        camera->setFlags(API::CameraOffline);
        QCOMPARE(stateOf(tile), "Idle"_s);
        QVERIFY(showsText(tile, "Camera Door is offline"_s));
        camera->setFlags(API::CameraNotPaid);
        QVERIFY(showsText(tile, "Camera Door is not paid for"_s));
        camera->setFlags(0);
        QTRY_COMPARE(stateOf(tile), "Playing"_s);
        QCOMPARE(child.starts().size(), 2);
    }

    void flagsInTheArchive()
    {
        ScriptedChild child(playing);
        const API::CameraPtr camera = localCamera();
        VideoWidget tile(camera);
        QVERIFY(tile.playArchive(noon, noon.addSecs(60), 1));
        QTRY_COMPARE(stateOf(tile), "Playing"_s);
        camera->setFlags(API::CameraOffline);
        QCOMPARE(stateOf(tile), "Playing"_s);
        camera->setFlags(0);
        QCOMPARE(child.starts().size(), 1);
    }

    void lastWordsOfAChildAreDropped()
    {
        // What a child still says while it is being ended must not pass for its successor's words.
        ScriptedChild child({"print frame\\n", "until go frame\\nstate 7\\n"});
        child.tell("go"_s);
        VideoWidget tile(localCamera());
        QVERIFY(tile.playArchive(noon, noon.addSecs(60), 1));
        QTRY_COMPARE(stateOf(tile), "Playing"_s);
        child.setScript({"deaf", "flood 200000000 time 9000\\nframe\\nstate 7\\n"});
        for (int i = 0; i < 5; ++i) {
            const LogCapture log;
            QVERIFY(tile.playArchive(noon, noon.addSecs(60), 1));
            QTest::qWait(1);
        }
        child.setScript({"wait first", "print frame\\n"});
        QVERIFY(tile.playArchive(noon, noon.addSecs(60), 1));
        QCOMPARE(stateOf(tile), "Starting"_s);
        QCOMPARE(tile.playbackTime(), noon);
        QVERIFY(!tile.findChild<QWidget *>("spinnerWidget"_s)->isHidden());
        child.tell("first"_s);
        QTRY_COMPARE(stateOf(tile), "Playing"_s);
    }

    void clickTellsTheCameraAndDumps()
    {
        const API::CameraPtr camera = localCamera();
        VideoWidget tile(camera);
        QList<API::CameraPtr> clicked;
        connect(&tile, &VideoWidget::clicked, this,
                [&clicked](const API::CameraPtr &which) { clicked << which; });
        tile.show();
        const LogCapture log;
        QTest::mouseClick(&tile, Qt::RightButton);
        QVERIFY(clicked.isEmpty());
        QTest::mouseClick(&tile, Qt::LeftButton);
        QCOMPARE(clicked, QList<API::CameraPtr>{camera});
        const QStringList dumps = log.linesOf("Activated camera:"_s);
        QCOMPARE(dumps.size(), 1);
        const QStringList labels{"Activated camera:", "state:",         "last request time:",
                                 "freeze time:",      "reloads count:", "is archive playing?",
                                 "VLC state:",        "volume:",        "quality:",
                                 "resolution:",       "playback time:", "base time:"};
        int position = -1;
        for (const QString &label : labels) {
            const int found = dumps.first().indexOf(label, position + 1);
            QVERIFY2(found > position, qPrintable(label));
            position = found;
        }
    }
};

QTEST_MAIN(PlaybackTest)
#include "PlaybackTest.moc"
