// SPDX-License-Identifier: MIT
#include "API/CloudAPIClient.h"

#include "tests/support/Test.h"

#include "API/Camera.h"
#include "API/LocalServer.h"
#include "API/Server.h"
#include "tests/API/RosterFixture.h"

using namespace ZorvaneClient::API;

class CloudRosterTest : public RosterFixture
{
    Q_OBJECT

private slots:
    void rosterContents_data();
    void rosterContents();
    void knownServerKeepsItsObject();
    void throttle();
    void emptyRosterIsNeverThrottled();
    void failureKeepsTheRoster();
    void rosterCanBeReadWhileItChanges();
    void replyToADeadHandleHoldsNothing();
};

void CloudRosterTest::rosterContents_data()
{
    QTest::addColumn<QByteArray>("response");
    QTest::addColumn<QStringList>("ids");

    QTest::newRow("by id, not by key")
        << QByteArray(R"({"9":{"id":"b"},"1":{"id":"c"},"5":{"id":"a"}})")
        << QStringList{"a", "b", "c"};
    QTest::newRow("empty entries are skipped")
        << QByteArray(R"({"1":{},"2":[],"3":null,"4":"text","5":{"id":"a"}})") << QStringList{"a"};
    QTest::newRow("same id twice")
        << QByteArray(R"({"1":{"id":"a"},"2":{"id":"a"}})") << QStringList{"a"};
    QTest::newRow("no servers") << QByteArray("{}") << QStringList();
}

void CloudRosterTest::rosterContents()
{
    QFETCH(QByteArray, response);
    QFETCH(QStringList, ids);

    CloudAPIClient client;
    update(&client); // something to be removed
    service.succeed("GET", "/public/roster", response);
    update(&client);
    QCOMPARE(client.serverList().keys(), ids);
}

void CloudRosterTest::knownServerKeepsItsObject()
{
    service.succeed("GET", "/public/roster",
                    R"({"1":{"id":"s1","name":"One","cameras":{"7":{"id":7,"name":"old"}}},
                        "2":{"id":"s2","name":"Two"}})");
    CloudAPIClient client;
    update(&client);
    const ServerPtr kept = client.serverList().value("s1"_s);
    const ServerPtr removed = client.serverList().value("s2"_s);
    QVERIFY(kept && removed);
    const CameraPtr camera = kept->cameras().value(7);
    QVERIFY(camera);

    service.succeed("GET", "/public/roster",
                    R"({"1":{"id":"s1","name":"Renamed","cameras":{"7":{"id":7,"name":"new"}}},
                        "3":{"id":"s3","name":"Three"}})");
    update(&client);
    QCOMPARE(client.serverList().keys(), QStringList({"s1", "s3"}));
    QCOMPARE(client.serverList().value("s1"_s), kept);
    QCOMPARE(kept->alias(), "Renamed"_s);
    QCOMPARE(kept->cameras().value(7), camera);
    QCOMPARE(camera->name(), "new"_s);
    QCOMPARE(removed->alias(), "Two"_s);
}

void CloudRosterTest::throttle()
{
    CloudAPIClient client;
    QSignalSpy updated(&client, &CloudAPIClient::rosterUpdated);
    client.updateRoster();
    QTRY_COMPARE(updated.count(), 1);
    setTime(29);
    client.updateRoster();
    QCOMPARE(updated.count(), 2);
    QCOMPARE(service.requestsTo("/public/roster").size(), 1);
    setTime(30);
    client.updateRoster();
    QCOMPARE(updated.count(), 2);
    QTRY_COMPARE(updated.count(), 3);
    QCOMPARE(service.requestsTo("/public/roster").size(), 2);
}

void CloudRosterTest::emptyRosterIsNeverThrottled()
{
    service.succeed("GET", "/public/roster", "{}");
    CloudAPIClient client;
    client.addLocalServer(lanServer(1));
    QSignalSpy updated(&client, &CloudAPIClient::rosterUpdated);
    client.updateRoster();
    QTRY_COMPARE(updated.count(), 1);
    client.updateRoster();
    QTRY_COMPARE(updated.count(), 2);
    QCOMPARE(service.requestsTo("/public/roster").size(), 2);
    QCOMPARE(client.serverList().size(), 1);
}

void CloudRosterTest::failureKeepsTheRoster()
{
    CloudAPIClient client;
    QSignalSpy failed(&client, &CloudAPIClient::rosterUpdateError);
    client.addLocalServer(lanServer(1));
    update(&client);
    const auto before = client.serverList();
    service.answer("GET", "/public/roster",
                   WireReply::json(R"({"success":false,"response":{"code":10002}})"));
    update(&client);
    QCOMPARE(failed.count(), 1);
    QCOMPARE(client.serverList(), before);
    // The failed request counts for the throttle.
    QSignalSpy updated(&client, &CloudAPIClient::rosterUpdated);
    client.updateRoster();
    QCOMPARE(updated.count(), 1);
}

// Signals of servers and cameras come with the lock held.
void CloudRosterTest::rosterCanBeReadWhileItChanges()
{
    CloudAPIClient client;
    update(&client);
    const ServerPtr server = client.serverList().value("s1"_s);
    QStringList seen;
    connect(server.data(), &Server::aliasChanged, this, [&] {
        seen = CloudAPIClient::serverList().keys();
        seen.append(CloudAPIClient::sessionId() + QString::number(client.layoutList().size()));
    });
    service.succeed("GET", "/public/roster", R"({"1":{"id":"s1","name":"Renamed"}})");
    update(&client);
    QCOMPARE(seen, QStringList({"s1", "0"}));
}

// The server leaves the connection open; only who asked can close it.
void CloudRosterTest::replyToADeadHandleHoldsNothing()
{
    WireReply reply = WireReply::json("{\"success\":true,\"response\":" + oneServer + "}");
    reply.bytes.replace("Connection: close\r\n", "");
    reply.ending = WireReply::Ending::KeepOpen;
    service.answer("GET", "/public/roster", reply);
    CloudAPIClient().updateRoster();
    QTRY_COMPARE(service.requestsTo("/public/roster").size(), 1);
    QTRY_COMPARE(service.server().openConnections(), 0);
    QVERIFY(CloudAPIClient::serverList().isEmpty());
}

QTEST_MAIN(CloudRosterTest)
#include "CloudRosterTest.moc"
