// SPDX-License-Identifier: MIT
#include "API/CloudAPIClient.h"

#include <QFile>
#include <QSignalSpy>
#include <QTest>

#include "API/Camera.h"
#include "API/LocalServer.h"
#include "API/Server.h"
#include "tests/API/RosterFixture.h"

using namespace ZorvaneClient::API;
using namespace ZorvaneClient::Tests;

class CloudRosterTest : public RosterFixture
{
    Q_OBJECT

private slots:
    void rosterOnTheWire();
    void rosterContents_data();
    void rosterContents();
    void knownServerKeepsItsObject();
    void serverThatComesBackIsNew();
    void throttle_data();
    void throttle();
    void emptyRosterIsNeverThrottled();
    void failureKeepsTheRoster_data();
    void failureKeepsTheRoster();
    void secondHandleHearsAtOnce();
    void rosterCanBeReadWhileItChanges();
    void replyToADeadHandleHoldsNothing();
};

void CloudRosterTest::rosterOnTheWire()
{
    CloudAPIClient client;
    QTest::ignoreMessage(QtDebugMsg, "Requesting roster");
    QTest::ignoreMessage(QtDebugMsg, "Roster updated");
    QTest::ignoreMessage(QtDebugMsg, "Roster: New server \"s1\"");
    update(&client);
    QCOMPARE(service.requests().constLast().requestLine(),
             QByteArray("GET /public/roster?sessionId HTTP/1.1"));
}

void CloudRosterTest::rosterContents_data()
{
    QTest::addColumn<QByteArray>("response");
    QTest::addColumn<QStringList>("ids");

    QTest::newRow("by id, not by key")
        << QByteArray(R"({"9":{"id":"b"},"1":{"id":"c"},"5":{"id":"a"}})")
        << QStringList{"a", "b", "c"};
    QTest::newRow("empty entries are skipped")
        << QByteArray(R"({"1":{},"2":[],"3":null,"4":"text","5":{"id":"a"}})") << QStringList{"a"};
    QTest::newRow("empty id") << QByteArray(R"({"1":{"name":"x"}})") << QStringList{""};
    QTest::newRow("number as id") << QByteArray(R"({"1":{"id":12}})") << QStringList{"12"};
    QTest::newRow("same id twice")
        << QByteArray(R"({"1":{"id":"a"},"2":{"id":"a"}})") << QStringList{"a"};
    QTest::newRow("no servers") << QByteArray("{}") << QStringList();
    QTest::newRow("list") << QByteArray(R"([{"id":"a"}])") << QStringList();
    QTest::newRow("null") << QByteArray("null") << QStringList();
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
    const ServerPtr kept = client.serverList().value(QStringLiteral("s1"));
    const ServerPtr removed = client.serverList().value(QStringLiteral("s2"));
    QVERIFY(kept && removed);
    const CameraPtr camera = kept->cameras().value(7);
    QVERIFY(camera);

    service.succeed("GET", "/public/roster",
                    R"({"1":{"id":"s1","name":"Renamed","cameras":{"7":{"id":7,"name":"new"}}},
                        "3":{"id":"s3","name":"Three"}})");
    QTest::ignoreMessage(QtDebugMsg, "Roster: Removing server \"s2\"");
    update(&client);
    QCOMPARE(client.serverList().keys(), QStringList({"s1", "s3"}));
    QCOMPARE(client.serverList().value(QStringLiteral("s1")), kept);
    QCOMPARE(kept->alias(), QStringLiteral("Renamed"));
    QCOMPARE(kept->cameras().value(7), camera);
    QCOMPARE(camera->name(), QStringLiteral("new"));
    QCOMPARE(removed->alias(), QStringLiteral("Two"));
}

void CloudRosterTest::serverThatComesBackIsNew()
{
    CloudAPIClient client;
    update(&client);
    const ServerPtr first = client.serverList().value(QStringLiteral("s1"));
    service.succeed("GET", "/public/roster", "{}");
    update(&client);
    service.succeed("GET", "/public/roster", oneServer);
    update(&client);
    const ServerPtr second = client.serverList().value(QStringLiteral("s1"));
    QVERIFY(first && second);
    QVERIFY(first != second);
}

void CloudRosterTest::throttle_data()
{
    QTest::addColumn<int>("seconds");
    QTest::addColumn<bool>("asks");
    QTest::newRow("at once") << 0 << false;
    QTest::newRow("next poll") << 20 << false;
    QTest::newRow("29 seconds") << 29 << false;
    QTest::newRow("30 seconds") << 30 << true;
    QTest::newRow("poll after the next") << 40 << true;
}

void CloudRosterTest::throttle()
{
    QFETCH(int, seconds);
    QFETCH(bool, asks);

    CloudAPIClient client;
    QSignalSpy updated(&client, &CloudAPIClient::rosterUpdated);
    client.updateRoster();
    QTRY_COMPARE(updated.count(), 1);
    setTime(seconds);
    if (!asks)
        QTest::ignoreMessage(QtDebugMsg, "Roster: Shortcut");
    client.updateRoster();
    QCOMPARE(updated.count(), asks ? 1 : 2);
    QTRY_COMPARE(updated.count(), 2);
    QCOMPARE(service.requestsTo("/public/roster").size(), asks ? 2 : 1);
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

void CloudRosterTest::failureKeepsTheRoster_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::newRow("session unknown")
        << WireReply::json(R"({"success":false,"response":{"code":10002}})").bytes;
    QTest::newRow("closed") << QByteArray();
}

void CloudRosterTest::failureKeepsTheRoster()
{
    QFETCH(QByteArray, reply);

    CloudAPIClient client;
    QSignalSpy failed(&client, &CloudAPIClient::rosterUpdateError);
    client.addLocalServer(lanServer(1));
    update(&client);
    const auto before = client.serverList();
    service.answer("GET", "/public/roster", WireReply::raw(reply));
    update(&client);
    QCOMPARE(failed.count(), 1);
    QCOMPARE(client.serverList(), before);
    // The failed request counts for the throttle.
    QSignalSpy updated(&client, &CloudAPIClient::rosterUpdated);
    client.updateRoster();
    QCOMPARE(updated.count(), 1);
}

void CloudRosterTest::secondHandleHearsAtOnce()
{
    CloudAPIClient first;
    update(&first);
    CloudAPIClient second;
    QSignalSpy firstUpdated(&first, &CloudAPIClient::rosterUpdated);
    QSignalSpy secondUpdated(&second, &CloudAPIClient::rosterUpdated);
    second.updateRoster();
    QCOMPARE(secondUpdated.count(), 1);
    QCOMPARE(firstUpdated.count(), 0);
}

// Signals of servers and cameras come with the lock held.
void CloudRosterTest::rosterCanBeReadWhileItChanges()
{
    CloudAPIClient client;
    update(&client);
    const ServerPtr server = client.serverList().value(QStringLiteral("s1"));
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
