// SPDX-License-Identifier: MIT
#include <QSignalSpy>
#include <QtTest>

#include "API/Camera.h"
#include "GUI/Player/VideoWidget.h"
#include "tests/GUI/Player/TileFixture.h"
#include "tests/support/LogCapture.h"
#include "tests/support/MisbehavingServer.h"
#include "tests/support/ScriptedChild.h"

using namespace ZorvaneClient;
using GUI::Player::VideoWidget;
using namespace ZorvaneClient::Tests;

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
    camera->setId(QStringLiteral("127.0.0.1:%1").arg(server.port()), 3);
    QSignalSpy changed(camera.data(), &API::Camera::recordsChanged);
    camera->updateTimeline(noon.date());
    changed.wait();
    return camera;
}

/// The key `name` of the URL that the last child got.
QString urlKey(const ScriptedChild &child, const QString &name)
{
    const QString url = child.starts().last().first();
    return QRegularExpression(QStringLiteral("[?&]%1=([^&]*)").arg(name)).match(url).captured(1);
}

} // namespace

/// When a tile starts and ends its child, and what it shows meanwhile.
class PlaybackTest : public QObject
{
    Q_OBJECT

private slots:
    void refusals_data();
    void refusals();
    void refusalLeavesTheChild();
    void unpaidCameraPlaysItsArchive();
    void commandsSetTheState_data();
    void commandsSetTheState();
    void stopEndsTheChild();
    void spinnerWaitsForTheFirstFrame();
    void isPlaying_data();
    void isPlaying();
    void archiveOfARecord_data();
    void archiveOfARecord();
    void speedStaysInLivePlay();
    void quality_data();
    void quality();
    void qualityGoesOnWhereTheArchiveWas();
    void flagsInLivePlay();
    void flagsInTheArchive();
    void lastWordsOfAChildAreDropped();
    void clickTellsTheCameraAndDumps();
};

void PlaybackTest::refusals_data()
{
    QTest::addColumn<QVariantMap>("changes");
    QTest::addColumn<bool>("archive");
    QTest::addColumn<QString>("text");
    const QVariantMap none;
    QTest::newRow("offline") << QVariantMap{{"online", false}} << false << "Camera Gate is offline";
    QTest::newRow("offline, archive")
        << QVariantMap{{"online", false}} << true << "Camera Gate is offline";
    QTest::newRow("unpaid") << QVariantMap{{"services", none}} << false
                            << "Camera Gate is not paid for";
    QTest::newRow("both") << QVariantMap{{"services", none}, {"online", false}} << false
                          << "Camera Gate is not paid for and offline";
    QTest::newRow("no live right")
        << QVariantMap{{"rights", QStringList{"archive"}}} << false << "Live is not shared";
    QTest::newRow("no archive right")
        << QVariantMap{{"rights", QStringList{"live"}}} << true << "Archive is not shared";
}

void PlaybackTest::refusals()
{
    QFETCH(QVariantMap, changes);
    QFETCH(bool, archive);
    QFETCH(QString, text);
    ScriptedChild child(playing);
    VideoWidget tile(cloudCamera(changes));
    tile.resize(320, 240);
    tile.show();
    QVERIFY(!(archive ? tile.playArchive(noon, noon.addSecs(60), 2) : tile.playLive()));
    QVERIFY(showsText(tile, text));
    QCOMPARE(stateOf(tile), QStringLiteral("Idle"));
    QVERIFY(child.starts().isEmpty());
}

void PlaybackTest::refusalLeavesTheChild()
{
    ScriptedChild child(playing);
    const API::CameraPtr camera = localCamera();
    VideoWidget tile(camera);
    tile.setArchiveMode(true); // or else the flag stops the tile
    QVERIFY(tile.play(QStringLiteral("http://host/")));
    QTRY_COMPARE(stateOf(tile), QStringLiteral("Playing"));
    camera->setFlags(API::CameraOffline);
    QVERIFY(!tile.play(QStringLiteral("http://host/")));
    QCOMPARE(stateOf(tile), QStringLiteral("Playing"));
    QVERIFY(ScriptedChild::isAlive(child.lastProcessId()));
    QCOMPARE(child.starts().size(), 1);
}

void PlaybackTest::unpaidCameraPlaysItsArchive()
{
    ScriptedChild child(playing);
    VideoWidget tile(cloudCamera({{"services", QVariantMap()}}));
    QVERIFY(tile.playArchive(noon, noon.addSecs(60), 1));
    QTRY_COMPARE(stateOf(tile), QStringLiteral("Playing"));
}

void PlaybackTest::commandsSetTheState_data()
{
    QTest::addColumn<bool>("hasChild");
    QTest::addColumn<bool>("isPause");
    QTest::addColumn<QString>("state");
    QTest::newRow("pause") << true << true << "Paused";
    QTest::newRow("unpause") << true << false << "Playing";
    QTest::newRow("pause without a child") << false << true << "Paused";
    QTest::newRow("unpause without a child") << false << false << "Playing";
}

void PlaybackTest::commandsSetTheState()
{
    QFETCH(bool, hasChild);
    QFETCH(bool, isPause);
    QFETCH(QString, state);
    ScriptedChild child;
    VideoWidget tile(localCamera());
    if (hasChild)
        QVERIFY(tile.playLive());
    QCOMPARE(stateOf(tile), hasChild ? QStringLiteral("Starting") : QStringLiteral("Idle"));
    if (isPause)
        tile.pause();
    else
        tile.unpause();
    QCOMPARE(stateOf(tile), state);
}

void PlaybackTest::stopEndsTheChild()
{
    ScriptedChild child(playing);
    VideoWidget tile(localCamera());
    tile.resize(320, 240);
    tile.show();
    tile.stop();
    QVERIFY(tile.playLive());
    QTRY_COMPARE(stateOf(tile), QStringLiteral("Playing"));
    const qint64 processId = child.lastProcessId();
    tile.stop();
    QCOMPARE(stateOf(tile), QStringLiteral("Idle"));
    QVERIFY(!ScriptedChild::isAlive(processId));
    QVERIFY(showsText(tile, QString()));
}

void PlaybackTest::spinnerWaitsForTheFirstFrame()
{
    ScriptedChild child({"wait go", "print frame\\n"});
    VideoWidget tile(localCamera());
    tile.show();
    const QWidget &spinner = *tile.findChild<QWidget *>(QStringLiteral("spinnerWidget"));
    QVERIFY(spinner.isHidden());
    QVERIFY(tile.playLive());
    QVERIFY(!spinner.isHidden());
    child.tell(QStringLiteral("go"));
    QTRY_VERIFY(spinner.isHidden());
    QCOMPARE(stateOf(tile), QStringLiteral("Playing"));
}

void PlaybackTest::isPlaying_data()
{
    QTest::addColumn<QStringList>("script");
    QTest::addColumn<QString>("state");
    QTest::addColumn<bool>("live");
    QTest::addColumn<bool>("archive");
    QTest::newRow("starting") << QStringList{} << "Starting" << false << true;
    QTest::newRow("playing") << playing << "Playing" << true << true;
    QTest::newRow("paused") << QStringList{"print state 4\\n"} << "Paused" << false << true;
    QTest::newRow("error") << failing << "Error" << false << false;
}

void PlaybackTest::isPlaying()
{
    QFETCH(QStringList, script);
    QFETCH(QString, state);
    QFETCH(bool, live);
    QFETCH(bool, archive);
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

void PlaybackTest::archiveOfARecord_data()
{
    QTest::addColumn<int>("minute");
    QTest::addColumn<bool>("plays");
    QTest::newRow("before all") << -1 << false;
    QTest::newRow("begin") << 0 << true;
    QTest::newRow("within") << 5 << true;
    QTest::newRow("end, in a gap") << 10 << false;
    QTest::newRow("gap") << 15 << false;
    QTest::newRow("second record") << 20 << true;
    QTest::newRow("end of all") << 30 << false;
    QTest::newRow("another day") << 24 * 60 << false;
}

void PlaybackTest::archiveOfARecord()
{
    QFETCH(int, minute);
    QFETCH(bool, plays);
    ScriptedChild child(playing);
    VideoWidget tile(cameraWithRecords());
    tile.resize(320, 240);
    tile.show();
    const QDateTime start = noon.addSecs(minute * 60);
    QCOMPARE(tile.playArchive(start, 4), plays);
    if (!plays) {
        QVERIFY(showsText(tile, QStringLiteral("No records")));
        QVERIFY(child.starts().isEmpty());
        return;
    }
    QTRY_COMPARE(child.starts().size(), 1);
    QCOMPARE(urlKey(child, QStringLiteral("startTime")).toLongLong(), start.toSecsSinceEpoch());
    QCOMPARE(urlKey(child, QStringLiteral("speed")), QStringLiteral("4"));
    QCOMPARE(tile.playbackTime(), start);
}

void PlaybackTest::speedStaysInLivePlay()
{
    const FakeClock clock(noon);
    ScriptedChild child({"wait go", "print time 1000\\n"});
    VideoWidget tile(localCamera());
    QVERIFY(tile.playArchive(noon.addDays(-1), noon, 4));
    QVERIFY(tile.playLive());
    QCOMPARE(tile.playbackTime(), noon);
    child.tell(QStringLiteral("go"));
    QTRY_COMPARE(tile.playbackTime(), noon.addSecs(4));
}

void PlaybackTest::quality_data()
{
    QTest::addColumn<int>("quality");
    QTest::addColumn<bool>("archive");
    QTest::addColumn<QString>("asked");
    QTest::newRow("the same") << 2 << false << "";
    QTest::newRow("too low") << -1 << false << "";
    QTest::newRow("too high") << 3 << false << "";
    QTest::newRow("live") << 0 << false << "0";
    QTest::newRow("archive") << 1 << true << "1";
}

void PlaybackTest::quality()
{
    QFETCH(int, quality);
    QFETCH(bool, archive);
    QFETCH(QString, asked);
    ScriptedChild child(playing);
    VideoWidget tile(localCamera());
    QVERIFY(archive ? tile.playArchive(noon, noon.addSecs(60), 1) : tile.playLive());
    QTRY_COMPARE(child.starts().size(), 1);
    QCOMPARE(urlKey(child, QStringLiteral("q")), QStringLiteral("2"));
    tile.setQuality(quality);
    if (asked.isEmpty()) {
        tile.playLive(); // the start after what didn't happen
        QTRY_COMPARE(child.starts().size(), 2);
        QCOMPARE(urlKey(child, QStringLiteral("q")), QStringLiteral("2"));
        return;
    }
    QTRY_COMPARE(child.starts().size(), 2);
    QCOMPARE(urlKey(child, QStringLiteral("q")), asked);
    QCOMPARE(child.starts().last().first().contains(QLatin1String("/flv/archive")), archive);
}

void PlaybackTest::qualityGoesOnWhereTheArchiveWas()
{
    ScriptedChild child({"print time 30000\\nframe\\n"});
    VideoWidget tile(localCamera());
    QVERIFY(tile.playArchive(noon, noon.addSecs(600), 2));
    QTRY_COMPARE(tile.playbackTime(), noon.addSecs(60));
    child.setScript({});
    tile.setQuality(0);
    QTRY_COMPARE(child.starts().size(), 2);
    QCOMPARE(urlKey(child, QStringLiteral("startTime")).toLongLong(),
             noon.addSecs(60).toSecsSinceEpoch());
    QCOMPARE(urlKey(child, QStringLiteral("speed")), QStringLiteral("2"));

    // A tile that plays nothing only remembers.
    tile.stop();
    tile.setQuality(1);
    QCOMPARE(stateOf(tile), QStringLiteral("Idle"));
    QVERIFY(tile.playArchive(noon, noon.addSecs(600)));
    QTRY_COMPARE(child.starts().size(), 3);
    QCOMPARE(urlKey(child, QStringLiteral("q")), QStringLiteral("1"));
    QCOMPARE(urlKey(child, QStringLiteral("speed")), QStringLiteral("1"));
}

void PlaybackTest::flagsInLivePlay()
{
    ScriptedChild child(playing);
    const API::CameraPtr camera = localCamera();
    VideoWidget tile(camera);
    tile.resize(320, 240);
    tile.show();
    QVERIFY(tile.playLive());
    QTRY_COMPARE(stateOf(tile), QStringLiteral("Playing"));
    camera->setFlags(API::CameraOffline);
    QCOMPARE(stateOf(tile), QStringLiteral("Idle"));
    QVERIFY(showsText(tile, QStringLiteral("Camera Door is offline")));
    camera->setFlags(API::CameraNotPaid);
    QVERIFY(showsText(tile, QStringLiteral("Camera Door is not paid for")));
    camera->setFlags(0);
    QTRY_COMPARE(stateOf(tile), QStringLiteral("Playing"));
    QCOMPARE(child.starts().size(), 2);
}

void PlaybackTest::flagsInTheArchive()
{
    ScriptedChild child(playing);
    const API::CameraPtr camera = localCamera();
    VideoWidget tile(camera);
    QVERIFY(tile.playArchive(noon, noon.addSecs(60), 1));
    QTRY_COMPARE(stateOf(tile), QStringLiteral("Playing"));
    camera->setFlags(API::CameraOffline);
    QCOMPARE(stateOf(tile), QStringLiteral("Playing"));
    camera->setFlags(0);
    QCOMPARE(child.starts().size(), 1);
}

void PlaybackTest::lastWordsOfAChildAreDropped()
{
    // What a child still says while it is being ended must not pass for its successor's words.
    ScriptedChild child({"print frame\\n", "until go frame\\nstate 7\\n"});
    child.tell(QStringLiteral("go"));
    VideoWidget tile(localCamera());
    QVERIFY(tile.playArchive(noon, noon.addSecs(60), 1));
    QTRY_COMPARE(stateOf(tile), QStringLiteral("Playing"));
    child.setScript({"deaf", "flood 200000000 time 9000\\nframe\\nstate 7\\n"});
    for (int i = 0; i < 5; ++i) {
        const LogCapture log;
        QVERIFY(tile.playArchive(noon, noon.addSecs(60), 1));
        QTest::qWait(1);
    }
    child.setScript({"wait first", "print frame\\n"});
    QVERIFY(tile.playArchive(noon, noon.addSecs(60), 1));
    QCOMPARE(stateOf(tile), QStringLiteral("Starting"));
    QCOMPARE(tile.playbackTime(), noon);
    QVERIFY(!tile.findChild<QWidget *>(QStringLiteral("spinnerWidget"))->isHidden());
    child.tell(QStringLiteral("first"));
    QTRY_COMPARE(stateOf(tile), QStringLiteral("Playing"));
}

void PlaybackTest::clickTellsTheCameraAndDumps()
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
    const QStringList dumps = log.linesOf(QStringLiteral("Activated camera:"));
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

QTEST_MAIN(PlaybackTest)
#include "PlaybackTest.moc"
