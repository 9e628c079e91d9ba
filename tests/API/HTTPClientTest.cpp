// SPDX-License-Identifier: MIT
#include "API/HTTPClient.h"

#include "tests/support/Test.h"

#include "App/Settings.h"
#include "tests/support/MisbehavingServer.h"

namespace App = ZorvaneClient::App;
using ZorvaneClient::API::HTTPClient;

namespace {

const QString localhost = "127.0.0.1"_s;
using Ending = WireReply::Ending;

/// What came of an exchange: a response, or the two numbers of a failure.
struct Outcome {
    explicit Outcome(HTTPClient *client)
        : finished(client, &HTTPClient::finished), error(client, &HTTPClient::error)
    {
    }

    int count() const { return finished.count() + error.count(); }
    QVariant response() const { return finished.value(0).value(0); }
    int code() const { return error.value(0).value(0).toInt(); }
    int status() const { return error.value(0).value(1).toInt(); }

    QSignalSpy finished;
    QSignalSpy error;
};

int threadCount()
{
    return QDir("/proc/self/task"_s).entryList(QDir::Dirs).size();
}

int descriptorCount()
{
    return QDir("/proc/self/fd"_s).entryList(QDir::AllEntries).size();
}

} // namespace

class HTTPClientTest : public QObject
{
    Q_OBJECT

private slots:
    void init()
    {
        server = QSharedPointer<MisbehavingServer>::create();
        QVERIFY(server->start());
        client = QSharedPointer<HTTPClient>::create(localhost, server->port(), false, false);
        outcome = QSharedPointer<Outcome>::create(client.data());
    }

    void outcomes_data()
    {
        QTest::addColumn<QByteArray>("reply");
        QTest::addColumn<int>("dripBytes");
        QTest::addColumn<QByteArray>("response"); // as compact JSON; empty: a failure
        QTest::addColumn<int>("status");

        const auto good = [](const char *name, const WireReply &reply, const QByteArray &response,
                             int dripBytes = 0) {
            QTest::newRow(name) << reply.bytes << dripBytes << response << 0;
        };
        const auto bad = [](const char *name, const QByteArray &reply, int status) {
            QTest::newRow(name) << reply << 0 << QByteArray() << status;
        };

        good("object", WireReply::json(R"({"a":1})"), R"({"a":1})");
        good("any content type", WireReply::body("{}", "text/html"), "{}");
        good("404 with JSON", WireReply::json(R"({"a":1})", 404), R"({"a":1})");
        good("byte by byte", WireReply::json(R"({"a":1})"), R"({"a":1})", 1);
        good("chunked",
             WireReply::raw("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"
                            "3\r\n{\"a\r\n4\r\n\":1}\r\n0\r\n\r\n"),
             R"({"a":1})", 7);
        good("body to the end of the connection",
             WireReply::raw("HTTP/1.0 200 OK\r\n\r\n{\"a\":1}"), R"({"a":1})");

        bad("empty body", WireReply::json("").bytes, 204);
        bad("connection closed at once", "", 204);
        bad("closed in the head", "HTTP/1.1 200 OK\r\nContent-Le", 204);
        bad("not HTTP", "SSH-2.0-OpenSSH_9.2\r\n", 204);
        bad("302 with an empty target",
            "HTTP/1.1 302 Found\r\nLocation: \r\nContent-Length: 0\r\n\r\n", 204);
        bad("blank body", WireReply::json(" ").bytes, 400);
        bad("garbage after the object", WireReply::json("{}}").bytes, 400);
        bad("nested too deep", WireReply::json(QByteArray(100000, '[')).bytes, 400);
        bad("shorter than promised",
            "HTTP/1.1 200 OK\r\nContent-Length: 100\r\nConnection: close\r\n\r\n{\"a\":1", 400);
        bad("chunk size is garbage",
            "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nzz\r\n{}\r\n", 204);
    }

    void outcomes()
    {
        QFETCH(QByteArray, reply);
        QFETCH(int, dripBytes);
        QFETCH(QByteArray, response);
        QFETCH(int, status);

        WireReply wire = WireReply::raw(reply);
        wire.dripBytes = dripBytes;
        server->setReply(wire);
        ask();
        QTRY_COMPARE(outcome->count(), 1);
        if (response.isEmpty()) {
            QCOMPARE(outcome->error.count(), 1);
            QCOMPARE(outcome->code(), -2);
            QCOMPARE(outcome->status(), status);
        } else {
            QCOMPARE(QJsonDocument::fromVariant(outcome->response()).toJson(QJsonDocument::Compact),
                     response);
        }
        QCoreApplication::processEvents();
        QCOMPARE(outcome->count(), 1);
    }

    void resetMidBody()
    {
        server->setReply(WireReply::raw("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n{\"a\":1",
                                        Ending::Reset));
        ask();
        QTRY_COMPARE(outcome->count(), 1);
        QCOMPARE(outcome->code(), -2);
        // The reset can overtake the body in the socket.
        QVERIFY(outcome->status() == 400 || outcome->status() == 204);
    }

    void endlessBodyIsCutOff()
    {
        constexpr int tooManyBytes = 65 * 1024 * 1024;
        server->setReply(WireReply::raw("HTTP/1.1 200 OK\r\n\r\n" + QByteArray(tooManyBytes, '1'),
                                        Ending::KeepOpen));
        QTest::ignoreMessage(QtWarningMsg, "HTTP reply is too large: \"127.0.0.1\"");
        client->get("/"_s, QVariantMap(), false);
        QTRY_COMPARE_WITH_TIMEOUT(outcome->count(), 1, 60000);
        QCOMPARE(outcome->code(), -2);
        QCOMPARE(outcome->status(), 204);
        QTRY_COMPARE(server->openConnections(), 0);
    }

    void requestOnTheWire_data()
    {
        QTest::addColumn<QString>("method");
        QTest::addColumn<QString>("path");
        QTest::addColumn<QVariantMap>("params");
        QTest::addColumn<QByteArray>("target");

        const auto row = [](const char *method, const char *path, const QVariantMap &params,
                            const char *target) {
            QTest::newRow(target) << method << path << params << QByteArray(target);
        };
        row("GET", "//layouts", {{"sessionId", "abc"}}, "//layouts?sessionId=abc");
        row("GET", "//preview/live",
            {{"server", "s"}, {"camera", 7}, {"sessionId", ""}, {"q", 0}, {"Z", 1u}},
            "//preview/live?Z=1&camera=7&q=0&server=s&sessionId=");
        row("GET", "/p", {{"a", "1&b=2#c d"}}, "/p?a=1%26b%3D2%23c%20d");
        row("GET", "/p", {{"a", QByteArray("%2B%26")}}, "/p?a=%2B%26");
        row("GET", "/a?b%41 c", {}, "/a%3Fb%2541%20c");
        row("DELETE", "/x", {{"a", "b"}}, "/x?a=b");
        row("POST", "//layouts", {{"sessionId", "abc"}}, "//layouts?sessionId=abc");
    }

    void requestOnTheWire()
    {
        QFETCH(QString, method);
        QFETCH(QString, path);
        QFETCH(QVariantMap, params);
        QFETCH(QByteArray, target);
        const bool json = !path.contains("preview"_s);

        const QByteArray body("a\0b&=%", 6);
        if (method == "GET"_s)
            client->get(path, params, json);
        else if (method == "DELETE"_s)
            client->del(path, params, json);
        else
            client->post(path, params, body, "application/json"_s, json);
        QTRY_COMPARE(outcome->finished.count(), 1);

        QCOMPARE(server->requests().size(), 1);
        const WireRequest request = server->requests().constFirst();
        QCOMPARE(request.requestLine(), method.toLatin1() + ' ' + target + " HTTP/1.1");
        QCOMPARE(request.header("Accept"),
                 json ? QByteArray("application/json") : QByteArray("*/*"));
        if (method == "POST"_s) {
            QCOMPARE(request.header("Content-Type"), QByteArray("application/json"));
            QCOMPARE(request.body, body);
        } else {
            QCOMPARE(request.header("Content-Type"), QByteArray());
            QCOMPARE(request.body, QByteArray());
        }
    }

    void redirectOnTheWire_data()
    {
        QTest::addColumn<QString>("method");
        QTest::addColumn<int>("status");
        QTest::addColumn<QByteArray>("target");

        for (const int status : {301, 302, 303, 307, 308})
            QTest::addRow("POST %d", status) << "POST" << status << QByteArray("/second");
        QTest::newRow("two slashes") << "GET" << 302 << QByteArray("//layouts?sessionId=abc");
    }

    void redirectOnTheWire()
    {
        QFETCH(QString, method);
        QFETCH(int, status);
        QFETCH(QByteArray, target);

        // Another server, so that host and port of the target count.
        MisbehavingServer second;
        QVERIFY(second.start());
        second.setReply(WireReply::redirect(server->origin() + "/third"));
        server->setHandler([&](const WireRequest &request) {
            return request.path() == "/third"
                       ? WireReply::json(R"({"done":true})")
                       : WireReply::redirect(second.origin() + target, status);
        });

        if (method == "GET"_s)
            client->get("/first"_s, {{"x"_s, 1}}, true);
        else
            client->post("/first"_s, QByteArray("body"), "a/b"_s, true);
        QTRY_COMPARE(outcome->count(), 1);
        QCOMPARE(outcome->response().toMap().value("done"_s).toBool(), true);

        QList<WireRequest> repeated = second.requests() + server->requests().mid(1);
        QCOMPARE(repeated.size(), 2);
        QCOMPARE(repeated.at(0).target(), target);
        QCOMPARE(repeated.at(1).target(), QByteArray("/third"));
        for (const WireRequest &request : qAsConst(repeated)) {
            QCOMPARE(request.method(), method.toLatin1());
            QCOMPARE(request.header("Accept"), QByteArray("application/json"));
            if (method == "POST"_s) {
                QCOMPARE(request.body, QByteArray("body"));
                QCOMPARE(request.header("Content-Type"), QByteArray("a/b"));
            }
        }
    }

    void redirectThatFails_data()
    {
        rows<QByteArray, int, int>(
            {"location", "code", "status"},
            {
                {"relative", QByteArray("/other"), -2, 204},
                {"dead port",
                 "http://127.0.0.1:" + QByteArray::number(MisbehavingServer::deadPort()) + "/", -2,
                 204},
                {"bad host", QByteArray("http://[bad/"), -3, 302},
                {"local file", QByteArray("file:///etc/hostname"), -3, 302},
            });
    }

    void redirectThatFails()
    {
        const auto [location, code, status] = row<QByteArray, int, int>();

        server->setReply(WireReply::redirect(location));
        client->get("/"_s, QVariantMap(), false);
        QTRY_COMPARE(outcome->count(), 1);
        QCOMPARE(outcome->error.count(), 1);
        QCOMPARE(outcome->code(), code);
        QCOMPARE(outcome->status(), status);
        QCOMPARE(server->requests().size(), 1);
    }

    void redirectLoopIsFollowed()
    {
        constexpr int loops = 60;
        server->setHandler([&](const WireRequest &) {
            return server->requests().size() > loops
                       ? WireReply::json("[]")
                       : WireReply::redirect(server->origin() + "/loop");
        });
        client->get("/loop"_s, QVariantMap(), true);
        QTRY_COMPARE_WITH_TIMEOUT(outcome->finished.count(), 1, 30000);
        QCOMPARE(server->requests().size(), loops + 1);
    }

    void redirectedDeleteEndsSilently()
    {
        server->setReply(WireReply::redirect(server->origin() + "/other"));
        client->del("/"_s, QVariantMap(), true);
        QTRY_COMPARE(server->requests().size(), 1);
        QTRY_COMPARE(server->openConnections(), 0);
        // An exchange begun later has its outcome, so the first one would have had its own.
        server->setReply(WireReply::json("{}"));
        HTTPClient later(localhost, server->port(), false, false);
        Outcome laterOutcome(&later);
        later.get("/later"_s, QVariantMap(), true);
        QTRY_COMPARE(laterOutcome.count(), 1);
        QCOMPARE(outcome->count(), 0);
        QCOMPARE(server->requests().size(), 2);
    }

    void noProxyUnlessAskedFor()
    {
        const int deadPort = MisbehavingServer::deadPort();
        for (const auto &setting : QList<QPair<QString, QVariant>>{
                 {"proxy/useProxy", true}, {"proxy/host", localhost}, {"proxy/port", deadPort}})
            App::settings().setValue(setting.first, setting.second);
        // What a desktop-wide proxy amounts to.
        QNetworkProxy::setApplicationProxy(
            QNetworkProxy(QNetworkProxy::HttpProxy, localhost, static_cast<quint16>(deadPort)));
        const auto restore =
            qScopeGuard([] { QNetworkProxy::setApplicationProxy(QNetworkProxy::DefaultProxy); });
        // An address that arrives here and that no rule for loopback keeps from a proxy.
        for (const bool useProxy : {false, true}) {
            HTTPClient asking("0.0.0.0"_s, server->port(), false, useProxy);
            Outcome result(&asking);
            asking.get("/"_s, QVariantMap(), true);
            QTRY_COMPARE(result.count(), 1);
            QCOMPARE(result.finished.count(), useProxy ? 0 : 1);
        }
    }

    void deadClientIsSilent()
    {
        server->setReply(WireReply::silence());
        ask();
        ask();
        QTRY_COMPARE(server->requests().size(), 2);
        client.reset();
        QTRY_COMPARE(server->openConnections(), 0);
        QCOMPARE(outcome->count(), 0);
    }

    // Some callers leave the object behind after a failure.
    void failuresHoldNoThreads()
    {
        server->setReply(WireReply::json(""));
        QList<QSharedPointer<HTTPClient>> leftBehind;
        const auto failOnce = [&] {
            leftBehind.append(
                QSharedPointer<HTTPClient>::create(localhost, server->port(), false, false));
            QSignalSpy error(leftBehind.constLast().data(), &HTTPClient::error);
            leftBehind.constLast()->get("/"_s, QVariantMap(), true);
            return error.wait();
        };
        QVERIFY(failOnce());
        QTRY_COMPARE(server->openConnections(), 0);
        QCoreApplication::processEvents();
        const int threads = threadCount();
        const int descriptors = descriptorCount();
        constexpr int failures = 50;
        for (int i = 0; i < failures; ++i)
            QVERIFY(failOnce());
        QTRY_VERIFY(threadCount() <= threads + 2);
        QTRY_VERIFY(descriptorCount() <= descriptors + 10);
    }

private:
    void ask() { client->get("/"_s, QVariantMap(), true); }

    QSharedPointer<MisbehavingServer> server;
    QSharedPointer<HTTPClient> client;
    QSharedPointer<Outcome> outcome;
};

QTEST_GUILESS_MAIN(HTTPClientTest)
#include "HTTPClientTest.moc"
