// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "API/Camera.h"
#include "API/LocalServer.h"
#include "tests/support/MisbehavingServer.h"

using namespace ZorvaneClient::API;
using ZorvaneClient::Tests::MisbehavingServer;
using ZorvaneClient::Tests::WireReply;
using ZorvaneClient::Tests::WireRequest;

namespace {

const QByteArray infoPath = "/vs_info/";
const QByteArray streamsPath = "/streams/info";
const WireReply failure = WireReply::json(QByteArray());

/// A video server on loopback with a reply for each of its two paths.
struct FakeVideoServer {
    FakeVideoServer()
    {
        http.setHandler([this](const WireRequest &request) {
            return request.path() == infoPath ? info : streams;
        });
        if (!http.start()) {
            qFatal("No loopback port");
        }
    }

    LocalServerPtr client(const QString &password = QString()) const
    {
        return LocalServerPtr::create("LAN"_s, "127.0.0.1"_s, http.port(), password);
    }

    int requestCount(const QByteArray &path) const
    {
        const QList<WireRequest> all = http.requests();
        return static_cast<int>(
            std::count_if(all.begin(), all.end(),
                          [&path](const WireRequest &request) { return request.path() == path; }));
    }

    MisbehavingServer http;
    WireReply info = WireReply::json("{\"functions\":[\"arc_search\"]}");
    WireReply streams = WireReply::json(
        R"([{"id":1,"name":"Gate","status":1,"width":1280,"height":720,"vcodec":"h264"},)"
        R"({"id":2,"name":"Yard","status":0}])");
};

/// Polls once more and waits until both replies are in.
bool poll(const LocalServerPtr &server, int signalsExpected = 2)
{
    QSignalSpy spy(server.data(), &LocalServer::updated);
    server->update();
    return QTest::qWaitFor([&] { return spy.size() >= signalsExpected; });
}

} // namespace

class LocalServerTest : public QObject
{
    Q_OBJECT

private slots:
    void videoSize()
    {
        const auto checked = [](int width, int height) {
            return LocalServer::checkedVideoSize({{"width"_s, width}, {"height"_s, height}});
        };
        const QSize fallback(640, 480);
        QCOMPARE(checked(80, 60), QSize(80, 60));
        QCOMPARE(checked(2400, 2000), QSize(2400, 2000));
        QCOMPARE(checked(79, 720), fallback);
        QCOMPARE(checked(1920, 2001), fallback);
        QCOMPARE(LocalServer::checkedVideoSize(QVariantMap()), fallback);
    }

    void firstReplies()
    {
        FakeVideoServer fake;
        const LocalServerPtr server = fake.client("secret"_s);
        QVERIFY(!server->isOnline());
        QTRY_COMPARE(server->cameras().size(), 2);
        QTRY_VERIFY(server->isArcSearchEnabled());
        QVERIFY(server->isOnline());

        const CameraPtr gate = server->cameras().value(1);
        QCOMPARE(gate->name(), "Gate"_s);
        QCOMPARE(gate->serverId(), server->id());
        QCOMPARE(gate->kind(), int(LocalCamera));
        QCOMPARE(gate->videoSize(), QSize(1280, 720));
        QCOMPARE(gate->vcodec(), "h264"_s);
        QVERIFY(gate->isExportEnabled() && gate->isOnline() && gate->isPaid());
        QVERIFY(gate->liveUrl(2).contains("&sessionId=secret&"_s));
        const CameraPtr yard = server->cameras().value(2);
        QCOMPARE(yard->flags(), int(CameraOffline));
        QCOMPARE(yard->videoSize(), QSize(640, 480));
    }

    void asksAgainByItself()
    {
        FakeVideoServer fake;
        const LocalServerPtr server = fake.client();
        QTRY_VERIFY_WITH_TIMEOUT(fake.requestCount(streamsPath) >= 2, 20000);
        QTRY_VERIFY(fake.requestCount(infoPath) >= 2);
    }

    void passwordOnTheWire()
    {
        FakeVideoServer fake;
        const LocalServerPtr server = fake.client("a+b&c d"_s);
        QTRY_VERIFY(fake.http.requests().size() >= 2);
        const QList<WireRequest> requests = fake.http.requests();
        for (const WireRequest &request : requests) {
            const QUrlQuery query(QString::fromLatin1(request.target().split('?').value(1)));
            // What arrives after the server has decoded the query is the password itself.
            QCOMPARE(query.queryItemValue("sessionId"_s, QUrl::FullyDecoded), "a+b&c d"_s);
            QCOMPARE(query.queryItemValue("server"_s), "1"_s);
        }
    }

    void sameCamerasStay()
    {
        FakeVideoServer fake;
        const LocalServerPtr server = fake.client();
        QTRY_COMPARE(server->cameras().size(), 2);
        const CameraPtr gate = server->cameras().value(1);
        const CameraPtr yard = server->cameras().value(2);
        QSignalSpy flagsSpy(gate.data(), &Camera::flagsChanged);
        QVERIFY(poll(server));
        QCOMPARE(server->cameras().value(1), gate);
        QVERIFY(flagsSpy.isEmpty());

        fake.streams = WireReply::json(R"([{"id":1,"name":"Door","status":0}])");
        QVERIFY(poll(server));
        QCOMPARE(server->cameras().keys(), QList<camera_id_t>{1});
        QCOMPARE(gate->name(), "Door"_s);
        QCOMPARE(flagsSpy.size(), 1);
        QCOMPARE(yard->name(), "Yard"_s);
    }

    void unusableEntries()
    {
        FakeVideoServer fake;
        const LocalServerPtr server = fake.client();
        QTRY_COMPARE(server->cameras().size(), 2);
        fake.streams = WireReply::json(
            R"([{"id":"two"},{},7,{"name":"no id"},{"id":null},{"id":"12","name":"text"}])");
        QVERIFY(poll(server));
        QCOMPARE(server->cameras().keys(), QList<camera_id_t>{12});
    }

    void failures()
    {
        FakeVideoServer fake;
        const LocalServerPtr server = fake.client();
        QTRY_VERIFY(server->isArcSearchEnabled() && server->cameras().size() == 2);
        QSignalSpy removedSpy(server.data(), &Server::camerasRemoved);
        fake.info = failure;
        QVERIFY(poll(server));
        QCOMPARE(server->cameras().size(), 2);
        QVERIFY(removedSpy.isEmpty());
        fake.streams = failure;
        QVERIFY(poll(server));
        QVERIFY(server->cameras().isEmpty());
        QCOMPARE(removedSpy.size(), 1);
        QVERIFY(server->isArcSearchEnabled());
        QVERIFY(!server->isOnline());
    }

    void hangingInfoIsNotAskedTwice()
    {
        FakeVideoServer fake;
        fake.info = WireReply::silence();
        const LocalServerPtr server = fake.client();
        QTRY_COMPARE(server->cameras().size(), 2);
        QVERIFY(poll(server, 1));
        QVERIFY(poll(server, 1));
        QCOMPARE(fake.requestCount(infoPath), 1);
        QVERIFY(fake.requestCount(streamsPath) >= 3);
    }

    void movesToAnotherAddress()
    {
        FakeVideoServer first;
        FakeVideoServer second;
        const LocalServerPtr server = first.client();
        QTRY_VERIFY(server->isArcSearchEnabled() && server->cameras().size() == 2);
        const CameraPtr known = server->cameras().value(1);
        const server_id_t oldId = server->id();

        second.streams = WireReply::json(R"([{"id":1,"name":"moved"},{"id":3}])");
        server->setPort(second.http.port());
        server->setPassword("new"_s);
        QVERIFY(poll(server));
        QVERIFY(second.requestCount(infoPath) >= 1 && second.requestCount(streamsPath) >= 1);
        QCOMPARE(server->id(), "127.0.0.1:%1"_s.arg(second.http.port()));
        // Known cameras keep address and password; new ones get the new.
        QCOMPARE(known->name(), "moved"_s);
        QCOMPARE(known->serverId(), oldId);
        QVERIFY(known->liveUrl(0).contains("&sessionId=&"_s));
        const CameraPtr added = server->cameras().value(3);
        QCOMPARE(added->serverId(), server->id());
        QVERIFY(added->liveUrl(0).contains("&sessionId=new&"_s));
    }

    void diesWhileAsking()
    {
        FakeVideoServer fake;
        fake.info = WireReply::silence();
        fake.streams = WireReply::silence();
        LocalServerPtr server = fake.client();
        QTRY_COMPARE(fake.http.requests().size(), 2);
        QCOMPARE(fake.http.openConnections(), 2);
        server.reset();
        // The clients go with it, and what they held open.
        QTRY_COMPARE(fake.http.openConnections(), 0);
    }
};

QTEST_MAIN(LocalServerTest)
#include "LocalServerTest.moc"
