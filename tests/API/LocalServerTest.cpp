// SPDX-License-Identifier: MIT
#include "tests/API/CloudFixture.h"

namespace {

const QByteArray infoPath = "/vs_info/";
const QByteArray streamsPath = "/streams/info";
const QByteArray info = R"({"functions":["arc_search"]})";
const QByteArray streams =
    R"([{"id":1,"name":"Gate","status":1,"width":1280,"height":720,"vcodec":"h264"},{"id":2}])";

/// Polls once more and waits until both replies are in.
bool poll(const LocalServerPtr &server)
{
    QSignalSpy spy(server.data(), &LocalServer::updated);
    server->update();
    return QTest::qWaitFor([&spy] { return spy.size() >= 2; });
}

/// "id name WxH codec state" of each camera.
QString describe(const LocalServerPtr &server)
{
    QStringList result;
    for (const CameraPtr &camera : server->cameras()) {
        const QSize size = camera->videoSize();
        const QString text = "%1 %2 %3x%4 %5 "_s.arg(camera->id()).arg(camera->name());
        result << text.arg(size.width()).arg(size.height()).arg(camera->vcodec()).simplified() +
                      (camera->isOnline() ? " on" : " off");
    }
    return result.join("; "_s);
}

} // namespace

/// A video server on the local network, with a reply for each of its two paths.
class LocalServerTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        replies = {{infoPath, WireReply::json(info)}, {streamsPath, WireReply::json(streams)}};
        lan = std::make_unique<MisbehavingServer>();
        requests.clear();
        lan->setHandler([this](const WireRequest &request) {
            requests[request.path()] << request;
            return replies[request.path()];
        });
        QVERIFY(lan->start());
        server = LocalServerPtr::create("LAN"_s, "127.0.0.1"_s, lan->port(), "a+b&c d"_s);
    }

    void cleanup() { server.reset(); }

    void firstReplies()
    {
        QVERIFY(!server->isOnline());
        waitForBoth();
        QVERIFY(server->isOnline());
        QCOMPARE(describe(server), "1 Gate 1280x720 h264 on; 2 640x480 off"_s);
        const CameraPtr gate = server->cameras().value(1);
        QVERIFY(gate->isExportEnabled() && gate->isPaid());
        QCOMPARE(server->cameras().value(2)->flags(), int(CameraOffline));
    }

    void laterReplies_data()
    {
        rows<QByteArray, QString, int>(
            {"entries", "cameras", "flagsChanges"},
            {{"one renamed, one gone", R"({"id":1,"name":"Door","vcodec":"flv"})",
              "1 Door 640x480 flv off", 1},
             {"smallest and largest",
              R"({"id":1,"width":80,"height":60,"status":1},{"id":2,"width":2400,"height":2000})",
              "1 80x60 on; 2 2400x2000 off", 0},
             {"impossible sizes",
              R"({"id":1,"width":79,"height":720},{"id":2,"width":1920,"height":2001})",
              "1 640x480 off; 2 640x480 off", 1},
             {"entries without a number",
              R"({"id":"two"},{},7,{"name":"no id"},{"id":null},{"id":"12","status":1})",
              "12 640x480 on", 0}});
    }

    void laterReplies()
    {
        const auto [entries, cameras, flagsChanges] = row<QByteArray, QString, int>();
        waitForBoth();
        const CameraPtr gate = server->cameras().value(1);
        QSignalSpy flags(gate.data(), &Camera::flagsChanged);
        replies[streamsPath] = WireReply::json('[' + entries + ']');
        QVERIFY(poll(server));
        QCOMPARE(describe(server), cameras);
        QCOMPARE(flags.size(), flagsChanges);
        QCOMPARE(server->cameras().value(1, gate), gate);
    }

    void asksAgainByItself()
    {
        for (const QByteArray &path : {infoPath, streamsPath}) {
            QTRY_VERIFY_WITH_TIMEOUT(requests[path].size() >= 2, 20000);
            // What arrives is the password itself, in the second request as well.
            for (const WireRequest &request : qAsConst(requests[path]))
                QCOMPARE(request.target(), path + "?server=1&sessionId=a%2Bb%26c%20d");
        }
    }

    void failures()
    {
        waitForBoth();
        QSignalSpy removedSpy(server.data(), &Server::camerasRemoved);
        replies[infoPath] = WireReply::json("");
        QVERIFY(poll(server));
        QVERIFY(server->cameras().size() == 2 && removedSpy.isEmpty());
        replies[streamsPath] = WireReply::json("");
        QVERIFY(poll(server));
        QVERIFY(server->cameras().isEmpty() && removedSpy.size() == 1);
        QVERIFY(server->isArcSearchEnabled() && !server->isOnline());
    }

    void oneReplyIsEnough_data()
    {
        rows<QByteArray, QByteArray>({"hanging", "answered"}, {{"streams", infoPath, streamsPath},
                                                               {"info", streamsPath, infoPath}});
    }

    void oneReplyIsEnough()
    {
        const auto [hanging, answered] = row<QByteArray, QByteArray>();
        replies[hanging] = WireReply::silence();
        QSignalSpy updated(server.data(), &LocalServer::updated);
        for (int polls = 1; polls <= 3; ++polls) {
            QTRY_VERIFY(updated.size() >= polls);
            QVERIFY(server->isOnline());
            server->update();
        }
        QTRY_VERIFY(requests[answered].size() >= 4);
        // A request that is still out is not sent again.
        QCOMPARE(requests[hanging].size(), 1);
    }

    void movesToAnotherAddress()
    {
        waitForBoth();
        const CameraPtr known = server->cameras().value(1);
        server->setHost("localhost"_s);
        QVERIFY(poll(server));
        for (const QByteArray &path : {infoPath, streamsPath})
            QVERIFY(requests[path].last().header("Host").startsWith("localhost:"));

        MisbehavingServer second;
        QVERIFY(second.start());
        second.setReply(WireReply::json(R"([{"id":1,"name":"moved"},{"id":3}])"));
        const QString oldAddress = known->liveUrl(0);
        server->setPort(second.port());
        server->setPassword("new"_s);
        QVERIFY(poll(server));
        QCOMPARE(second.requests().size(), 2);
        // Known cameras keep address and password; new ones get the new.
        QCOMPARE(known->name(), "moved"_s);
        QCOMPARE(known->liveUrl(0), oldAddress);
        const QString address = server->cameras().value(3)->liveUrl(0);
        QVERIFY(address.startsWith("http://localhost:%1/"_s.arg(second.port())));
        QVERIFY(address.contains("&sessionId=new&"_s));
    }

    void diesWhileAsking()
    {
        replies = {{infoPath, WireReply::silence()}, {streamsPath, WireReply::silence()}};
        QTRY_COMPARE(lan->requests().size(), 2);
        QCOMPARE(lan->openConnections(), 2);
        server.reset();
        // The clients go with it, and what they held open.
        QTRY_COMPARE(lan->openConnections(), 0);
    }

private:
    void waitForBoth()
    {
        QTRY_VERIFY(server->isArcSearchEnabled() && server->cameras().size() == 2);
    }

    QHash<QByteArray, WireReply> replies;
    QHash<QByteArray, QList<WireRequest>> requests;
    std::unique_ptr<MisbehavingServer> lan;
    LocalServerPtr server;
};

QTEST_MAIN(LocalServerTest)
#include "LocalServerTest.moc"
