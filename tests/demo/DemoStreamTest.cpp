// SPDX-License-Identifier: MIT
#include <QElapsedTimer>
#include <QTcpSocket>
#include <QtTest>

#include "tests/demo/DemoTest.h"
#include "tests/demo/StreamPictures.h"
#include "tests/support/StripReader.h"

using namespace ZorvaneClient;
using namespace ZorvaneClient::Tests;

namespace {

// Far more than any machine should need; what is measured is that pictures are not from
// another second than they claim.
constexpr int liveLagMs = 2000;

} // namespace

/// Live streams, and what goes wrong with streams and replies on purpose.
class DemoStreamTest : public DemoTest
{
    Q_OBJECT

public:
    DemoStreamTest() : DemoTest(plainWorld()) {}

private slots:
    void liveStreamFollowsTheClock_data();
    void liveStreamFollowsTheClock();
    void lanStreamWantsItsPassword();
    void camerasKeepTheirNumbersInSharedClips();
    void refusedStreams_data();
    void refusedStreams();
    void cameraGoneOfflineEndsItsStream();
    void faultyReplies_data();
    void faultyReplies();
    void slowAndDelayedReplies();
    void faultHitsOnlyItsCameraAndTimes();
    void faultReachesARunningStream_data();
    void faultReachesARunningStream();

private:
    QString liveUrl(const DemoCamera &camera, int quality = 0);
    void openStream(const QString &url);

    QTcpSocket socket;
};

QString DemoStreamTest::liveUrl(const DemoCamera &camera, int quality)
{
    return client.flv(QStringLiteral("/flv/live")) + client.query(camera, session) +
           QStringLiteral("&q=%1&vcodec=h264&vcodec=flv&vcodec=mpeg4&acodec=mp3").arg(quality);
}

/// Opens it by the socket and reads until it is running.
void DemoStreamTest::openStream(const QString &url)
{
    const QString path = url.mid(client.flv(QString()).size());
    socket.abort();
    socket.connectToHost(QStringLiteral("127.0.0.1"), static_cast<quint16>(service.flvPort()));
    socket.write("GET " + path.toUtf8() + " HTTP/1.1\r\nHost: x\r\n\r\n");
    QTRY_VERIFY_WITH_TIMEOUT(socket.bytesAvailable() > 20'000, 10'000);
}

void DemoStreamTest::liveStreamFollowsTheClock_data()
{
    QTest::addColumn<int>("quality");
    QTest::addColumn<QSize>("size");
    QTest::newRow("low") << 0 << QSize(320, 180);
    QTest::newRow("middle") << 1 << QSize(640, 360);
    QTest::newRow("high") << 2 << QSize(1280, 720);
}

void DemoStreamTest::liveStreamFollowsTheClock()
{
    QFETCH(int, quality);
    QFETCH(QSize, size);
    const StreamPictures stream = StreamPictures::from(liveUrl(service.camera(3), quality), 25);
    QVERIFY(stream.opened);
    QVERIFY(!stream.damaged);
    QVERIFY(stream.sound);
    QCOMPARE(stream.pictures.size(), 25);
    QCOMPARE(stream.pictures.first().stampMs, qint64(0));
    qint64 before = -1;
    int moment = -1;
    for (const auto &picture : stream.pictures) {
        QCOMPARE(picture.image.size(), size);
        QCOMPARE(picture.strip.camera, 3);
        QVERIFY(picture.stampMs > before);
        // Ten pictures a second in the test clips, without a hole.
        QVERIFY(moment < 0 || picture.strip.milliseconds == (moment + 100) % 60'000);
        before = picture.stampMs;
        moment = picture.strip.milliseconds;
    }
    const auto &last = stream.pictures.last();
    QVERIFY(StripReader::ageMs(last.strip, last.receivedMs) < liveLagMs);
    const auto small = StripReader::readTile(
        last.image.scaled(155, 87, Qt::IgnoreAspectRatio, Qt::FastTransformation));
    QVERIFY(small);
    QCOMPARE(small->milliseconds, last.strip.milliseconds);
}

void DemoStreamTest::lanStreamWantsItsPassword()
{
    const QString url = client.lan(QStringLiteral("/flv/live?server=1&camera=2&q=0&sessionId="));
    QVERIFY(!StreamPictures::from(url + QStringLiteral("wrong"), 1).opened);
    const StreamPictures stream = StreamPictures::from(url + service.lanPassword(), 1);
    QCOMPARE(stream.pictures.size(), 1);
    QCOMPARE(stream.pictures.first().strip.camera, 6);
}

void DemoStreamTest::camerasKeepTheirNumbersInSharedClips()
{
    DemoService::Options options;
    options.servers = 300;
    options.cameras = 10'000;
    options.lanServers = 0;
    options.scenes = 1;
    options.plain = true;
    DemoService many;
    QVERIFY2(many.start(options), qPrintable(many.errorString()));
    DemoClient other(many);
    const QString signedIn = other.session();
    for (const int number : {4095, 10'000}) {
        const StreamPictures stream = StreamPictures::from(
            other.flv(QStringLiteral("/flv/live")) + other.query(many.camera(number), signedIn), 1);
        QCOMPARE(stream.pictures.size(), 1);
        QCOMPARE(stream.pictures.first().strip.camera, number);
    }
}

void DemoStreamTest::refusedStreams_data()
{
    QTest::addColumn<QString>("path");
    QTest::addColumn<QString>("changed"); // JSON of the camera's change
    QTest::addColumn<int>("status");
    const QString live = QStringLiteral("/flv/live");
    QTest::newRow("offline") << live << "{\"online\":false}" << 404;
    QTest::newRow("not paid for") << live << "{\"paid\":false}" << 403;
    QTest::newRow("no live right") << live << "{\"rights\":[\"archive\"]}" << 403;
    QTest::newRow("unknown path") << QStringLiteral("/flv/later") << "{\"online\":true}" << 404;
}

void DemoStreamTest::refusedStreams()
{
    QFETCH(QString, path);
    QFETCH(QString, changed);
    QFETCH(int, status);
    const DemoCamera camera = service.camera(1);
    QVERIFY(service.setCamera(camera.server, camera.camera,
                              QJsonDocument::fromJson(changed.toUtf8()).object()));
    const Answer answer = client.get(client.flv(path) + client.query(camera, session));
    QCOMPARE(answer.status, status);
    QVERIFY(answer.body.isEmpty());
}

void DemoStreamTest::cameraGoneOfflineEndsItsStream()
{
    const DemoCamera camera = service.camera(1);
    openStream(liveUrl(camera));
    QCOMPARE(service.openStreams(), 1);
    QVERIFY(service.setCameraOnline(camera.server, camera.camera, false));
    QTRY_COMPARE_WITH_TIMEOUT(socket.state(), QAbstractSocket::UnconnectedState, 10'000);
    QTRY_COMPARE(service.openStreams(), 0);
    QVERIFY(service.setCameraOnline(camera.server, camera.camera, true));
    QCOMPARE(StreamPictures::from(liveUrl(camera), 1).pictures.size(), 1);
}

void DemoStreamTest::faultyReplies_data()
{
    QTest::addColumn<QString>("kind");
    QTest::addColumn<QString>("outcome");
    QTest::newRow("close") << "close"
                           << "no reply";
    QTest::newRow("truncate") << "truncate"
                              << "cut short";
    QTest::newRow("garble") << "garble"
                            << "not JSON";
    QTest::newRow("empty") << "empty"
                           << "empty";
    QTest::newRow("nonjson") << "nonjson"
                             << "not JSON";
    QTest::newRow("redirect") << "redirect"
                              << "elsewhere";
    QTest::newRow("status") << "status"
                            << "status";
    QTest::newRow("stall") << "stall"
                           << "never ends";
}

void DemoStreamTest::faultyReplies()
{
    QFETCH(QString, kind);
    QFETCH(QString, outcome);
    DemoFault fault;
    fault.kind = kind;
    fault.route = QStringLiteral("/public/*");
    fault.listener = QStringLiteral("api");
    fault.value = kind == QLatin1String("status") ? 503 : 0;
    fault.after = kind == QLatin1String("truncate") ? 200 : 0;
    fault.location = QStringLiteral("https://127.0.0.1:1/elsewhere");
    QVERIFY(service.addFault(fault) > 0);
    const QString url = client.api(QStringLiteral("/public/roster?sessionId=")) + session;
    const Answer answer = client.get(url, kind == QLatin1String("stall") ? 1500 : 15'000);
    const bool json = !QJsonDocument::fromJson(answer.body).isNull();
    QString found = QStringLiteral("nothing wrong");
    if (answer.timedOut)
        found = QStringLiteral("never ends");
    else if (answer.redirect.isValid())
        found = answer.redirect.path().mid(1);
    else if (answer.status == 503 && json)
        found = QStringLiteral("status");
    else if (answer.status == 0)
        found = QStringLiteral("no reply");
    else if (answer.error == QNetworkReply::RemoteHostClosedError && answer.body.size() >= 200)
        found = QStringLiteral("cut short");
    else if (answer.body.isEmpty())
        found = QStringLiteral("empty");
    else if (!json)
        found = QStringLiteral("not JSON");
    QCOMPARE(found, outcome);
    QVERIFY(service.clearFaults());
    QVERIFY(client.get(url).success());
}

void DemoStreamTest::slowAndDelayedReplies()
{
    const QString url = client.api(QStringLiteral("/public/roster?sessionId=")) + session;
    const int size = client.get(url).body.size();
    DemoFault slow;
    slow.kind = QStringLiteral("slow");
    slow.route = QStringLiteral("/public/roster");
    slow.value = size;
    const int number = service.addFault(slow);
    QElapsedTimer clock;
    clock.start();
    QCOMPARE(client.get(url).body.size(), size);
    QVERIFY(clock.elapsed() >= 900);
    QVERIFY(service.clearFault(number));

    DemoFault delay;
    delay.kind = QStringLiteral("delay");
    delay.route = QStringLiteral("/public/roster");
    delay.value = 700;
    QVERIFY(service.addFault(delay) > 0);
    clock.restart();
    QVERIFY(client.get(url).success());
    QVERIFY(clock.elapsed() >= 700);
}

void DemoStreamTest::faultHitsOnlyItsCameraAndTimes()
{
    DemoFault fault;
    fault.kind = QStringLiteral("empty");
    fault.route = QStringLiteral("//preview/live");
    fault.server = service.camera(1).server;
    fault.camera = service.camera(1).camera;
    fault.times = 2;
    QVERIFY(service.addFault(fault) > 0);
    const auto isEmpty = [&](int number) {
        return client
            .get(client.streaming(QStringLiteral("//preview/live")) +
                 client.query(service.camera(number), session))
            .body.isEmpty();
    };
    QVERIFY(isEmpty(1));
    QVERIFY(!isEmpty(2));
    QVERIFY(isEmpty(1));
    QVERIFY(!isEmpty(1));
}

void DemoStreamTest::faultReachesARunningStream_data()
{
    QTest::addColumn<QString>("kind");
    QTest::newRow("close") << "close";
    QTest::newRow("truncate") << "truncate";
    QTest::newRow("stall") << "stall";
}

void DemoStreamTest::faultReachesARunningStream()
{
    QFETCH(QString, kind);
    openStream(liveUrl(service.camera(1)));
    DemoFault fault;
    fault.kind = kind;
    fault.route = QStringLiteral("/flv/*");
    const int number = service.addFault(fault);
    QVERIFY(number > 0);
    if (kind != QLatin1String("stall")) {
        QTRY_COMPARE_WITH_TIMEOUT(socket.state(), QAbstractSocket::UnconnectedState, 10'000);
        return;
    }
    // What is on its way still comes; then a stream of ten pictures a second falls silent.
    bool silent = false;
    for (int i = 0; i < 10 && !silent; ++i) {
        socket.readAll();
        silent = !socket.waitForReadyRead(1500);
    }
    QVERIFY(silent);
    QCOMPARE(socket.state(), QAbstractSocket::ConnectedState);
    QVERIFY(service.clearFault(number));
    QTRY_VERIFY_WITH_TIMEOUT(socket.bytesAvailable() > 0, 10'000);
}

QTEST_GUILESS_MAIN(DemoStreamTest)
#include "DemoStreamTest.moc"
