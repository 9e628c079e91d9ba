// SPDX-License-Identifier: MIT
#include "API/CloudAPIClient.h"

#include "tests/support/Test.h"

#include "API/Layout.h"
#include "API/LocalServer.h"
#include "tests/API/RosterFixture.h"

using namespace ZorvaneClient::API;

class CloudSessionTest : public RosterFixture
{
    Q_OBJECT

private slots:
    void signIn_data();
    void signIn();
    void signInFails_data();
    void signInFails();
    void signOutForgetsEverything();
    void updateCheck();
    void deadHandleIsHarmless();

private:
    void signInAs(const QByteArray &session);
};

void CloudSessionTest::signInAs(const QByteArray &session)
{
    service.succeed("POST", "/public/sessions", "{\"session_id\":\"" + session + "\"}");
    CloudAPIClient client;
    QSignalSpy success(&client, &CloudAPIClient::loginSuccess);
    client.tryLogin("a@b"_s, "p"_s);
    QTRY_COMPARE(success.count(), 1);
    service.reset();
}

void CloudSessionTest::signIn_data()
{
    QTest::addColumn<QString>("email");
    QTest::addColumn<QString>("password");
    QTest::addColumn<QByteArray>("response");
    QTest::addColumn<QByteArray>("body");
    QTest::addColumn<QString>("session");

    const QByteArray client = "clientType=windows&clientVersion=6.0.1.114&";
    const auto row = [&](const char *email, const QString &password, const char *response,
                         const QByteArray &rest, const char *session) {
        QTest::newRow(email) << email << password << QByteArray(response) << client + rest
                             << session;
    };
    row("a+b@c", "1&2=3+4 %"_s, R"({"session_id":"abc"})",
        "login=a%2Bb%40c&password=1%262%3D3%2B4%20%25", "abc");
    row("Cyrillic", QString::fromUtf8("Ж"), R"({"session_id":7})", "login=Cyrillic&password=%D0%96",
        "7");
    row("", QString(), "{}", "login=&password=", "");
}

void CloudSessionTest::signIn()
{
    QFETCH(QString, email);
    QFETCH(QString, password);
    QFETCH(QByteArray, response);
    QFETCH(QByteArray, body);
    QFETCH(QString, session);

    QCoreApplication::setApplicationVersion("6.0.1.114"_s);
    service.succeed("POST", "/public/sessions", response);
    CloudAPIClient client;
    QSignalSpy success(&client, &CloudAPIClient::loginSuccess);
    client.tryLogin(email, password);
    QTRY_COMPARE(success.count(), 1);
    QCOMPARE(CloudAPIClient::sessionId(), session);
    const WireRequest request = service.requests().constFirst();
    QCOMPARE(request.requestLine(), QByteArray("POST /public/sessions HTTP/1.1"));
    QCOMPARE(request.header("Content-Type"), QByteArray("application/x-www-form-urlencoded"));
    QCOMPARE(request.body, body);
}

void CloudSessionTest::signInFails_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::newRow("wrong password")
        << WireReply::json(R"({"success":false,"response":{"code":10001}})").bytes;
    QTest::newRow("no envelope") << WireReply::json(R"({"session_id":"abc"})").bytes;
}

void CloudSessionTest::signInFails()
{
    QFETCH(QByteArray, reply);

    service.answer("POST", "/public/sessions", WireReply::raw(reply));
    CloudAPIClient client;
    QSignalSpy success(&client, &CloudAPIClient::loginSuccess);
    QSignalSpy failed(&client, &CloudAPIClient::loginFailed);
    client.tryLogin("a@b"_s, "wrong"_s);
    QTRY_COMPARE(failed.count(), 1);
    QCOMPARE(success.count(), 0);
    QCOMPARE(CloudAPIClient::sessionId(), QString());
}

void CloudSessionTest::signOutForgetsEverything()
{
    signInAs("abc");
    service.succeed("GET", "/public/roster", R"({"x":{"id":"s1","online":true}})");
    CloudAPIClient client;
    QSignalSpy roster(&client, &CloudAPIClient::rosterUpdated);
    QSignalSpy layouts(&client, &CloudAPIClient::layoutsUpdated);
    client.updateRoster();
    QTRY_COMPARE(roster.count(), 1);
    client.addLocalServer(
        LocalServerPtr::create("LAN"_s, "127.0.0.1"_s, MisbehavingServer::deadPort(), QString()));
    client.addLayout(LayoutPtr::create());
    QCOMPARE(client.serverList().size(), 2);
    QCOMPARE(client.layoutList().size(), 1);
    const int rosterBefore = roster.count();
    const int layoutsBefore = layouts.count();

    // What a list in an open window does: it reads while it is told.
    int seenServers = -1;
    int seenLayouts = -1;
    connect(&client, &CloudAPIClient::rosterUpdated, this, [&] {
        client.clearRoster();
        seenServers = client.serverList().size();
    });
    connect(&client, &CloudAPIClient::layoutsUpdated, this,
            [&] { seenLayouts = client.layoutList().size(); });
    client.logout();
    QCOMPARE(roster.count(), rosterBefore + 1);
    QCOMPARE(layouts.count(), layoutsBefore + 1);
    QCOMPARE(seenServers, 0);
    QCOMPARE(seenLayouts, 0);
    QCOMPARE(client.sessionId(), QString());
    QTRY_COMPARE(service.requestsTo("/public/sessions/abc").size(), 1);
    QCOMPARE(service.requestsTo("/public/sessions/abc").constFirst().requestLine(),
             QByteArray("DELETE /public/sessions/abc HTTP/1.1"));
}

void CloudSessionTest::updateCheck()
{
    service.succeed("GET", "/public/version/client_windows", R"({"version":"7.0.0.1"})");
    CloudAPIClient client;
    QSignalSpy found(&client, &CloudAPIClient::updatesFound);
    client.checkForUpdates();
    QTRY_COMPARE(found.count(), 1);
    QCOMPARE(found.at(0).at(0).toString(), "7.0.0.1"_s);
}

void CloudSessionTest::deadHandleIsHarmless()
{
    const camera_global_id_t camera{"s1"_s, 1};
    service.succeed("GET", "/public/roster", R"({"x":{"id":"s1"}})");
    QTest::ignoreMessage(QtWarningMsg, "Error saving layouts");
    QTest::ignoreMessage(QtWarningMsg, "Error saving rotation 10001 500");
    {
        CloudAPIClient client;
        client.checkForUpdates();
        client.updateRoster();
        client.requestPreview(camera.server, camera.camera);
        client.getTimeline(camera, 1, 2);
        client.getCalendar(camera, 1, 2);
        client.setCameraRotation(camera, 90);
        client.saveLayoutsToAPI();
        client.tryLogin("a"_s, "b"_s);
    }
    constexpr int requestCount = 8;
    QTRY_COMPARE(service.requests().size(), requestCount);
    QTRY_COMPARE(service.server().openConnections(), 0);
    // An exchange begun later has its outcome, so theirs have been handled.
    CloudAPIClient later;
    QSignalSpy failed(&later, &CloudAPIClient::updatesError);
    later.checkForUpdates();
    QTRY_COMPARE(failed.count(), 1);
    QVERIFY(!later.serverList().contains(camera.server)); // dropped with its handle
}

QTEST_MAIN(CloudSessionTest)
#include "CloudSessionTest.moc"
