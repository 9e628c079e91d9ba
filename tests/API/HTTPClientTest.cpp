// SPDX-License-Identifier: MIT
#include "API/HTTPClient.h"

#include <QDir>
#include <QJsonDocument>
#include <QNetworkProxy>
#include <QPointer>
#include <QScopeGuard>
#include <QSignalSpy>
#include <QTest>

#include "App/Settings.h"
#include "tests/support/MisbehavingServer.h"

namespace App = ZorvaneClient::App;
using ZorvaneClient::API::HTTPClient;
using namespace ZorvaneClient::Tests;

namespace {

const QString localhost = QStringLiteral("127.0.0.1");
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
    return QDir(QStringLiteral("/proc/self/task")).entryList(QDir::Dirs).size();
}

int descriptorCount()
{
    return QDir(QStringLiteral("/proc/self/fd")).entryList(QDir::AllEntries).size();
}

} // namespace

class HTTPClientTest : public QObject
{
    Q_OBJECT

private slots:
    void init();
    void outcome_data();
    void outcome();
    void resetMidBody();
    void refused();
    void endlessBodyIsCutOff();
    void binaryBodyIsNotParsed();
    void requestOnTheWire_data();
    void requestOnTheWire();
    void queryDoesNotLeak();
    void redirectOnTheWire_data();
    void redirectOnTheWire();
    void redirectThatFails_data();
    void redirectThatFails();
    void redirectLoopIsFollowed();
    void redirectedDeleteEndsSilently();
    void pathIsUrlAfterRedirect();
    void newAddress();
    void noProxyUnlessAskedFor();
    void deadClientIsSilent();
    void failuresHoldNoThreads();

private:
    QSharedPointer<MisbehavingServer> server;
};

void HTTPClientTest::init()
{
    server = QSharedPointer<MisbehavingServer>::create();
    QVERIFY(server->start());
}

void HTTPClientTest::outcome_data()
{
    QTest::addColumn<QByteArray>("reply");
    QTest::addColumn<int>("dripBytes");
    QTest::addColumn<QByteArray>("response"); // as compact JSON; empty: a failure
    QTest::addColumn<int>("code");
    QTest::addColumn<int>("status");

    const auto good = [](const char *name, const WireReply &reply, const QByteArray &response,
                         int dripBytes = 0) {
        QTest::newRow(name) << reply.bytes << dripBytes << response << 0 << 0;
    };
    const auto bad = [](const char *name, const QByteArray &reply, int status) {
        QTest::newRow(name) << reply << 0 << QByteArray() << -2 << status;
    };

    good("object", WireReply::json(R"({"a":1})"), R"({"a":1})");
    good("array", WireReply::json("[1,2]"), "[1,2]");
    good("empty object", WireReply::json("{}"), "{}");
    good("any content type", WireReply::body("{}", "text/html"), "{}");
    good("404 with JSON", WireReply::json(R"({"a":1})", 404), R"({"a":1})");
    good("401 with JSON", WireReply::json(R"({"a":1})", 401), R"({"a":1})");
    good("500 with JSON", WireReply::json(R"({"a":1})", 500), R"({"a":1})");
    good("byte by byte", WireReply::json(R"({"a":1})"), R"({"a":1})", 1);
    good("chunked",
         WireReply::raw("HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\n"
                        "3\r\n{\"a\r\n4\r\n\":1}\r\n0\r\n\r\n"),
         R"({"a":1})", 7);
    good("body to the end of the connection", WireReply::raw("HTTP/1.0 200 OK\r\n\r\n{\"a\":1}"),
         R"({"a":1})");

    bad("empty body", WireReply::json("").bytes, 204);
    bad("empty 500", WireReply::json("", 500).bytes, 204);
    bad("no content", "HTTP/1.1 204 No Content\r\n\r\n", 204);
    bad("connection closed at once", "", 204);
    bad("closed in the head", "HTTP/1.1 200 OK\r\nContent-Le", 204);
    bad("not HTTP", "SSH-2.0-OpenSSH_9.2\r\n", 204);
    bad("302 with an empty target", "HTTP/1.1 302 Found\r\nLocation: \r\nContent-Length: 0\r\n\r\n",
        204);
    bad("blank body", WireReply::json(" ").bytes, 400);
    bad("HTML", WireReply::body("<html>busy</html>", "text/html").bytes, 400);
    bad("number", WireReply::json("x1").bytes, 400);
    bad("half an object", WireReply::json(R"({"a":)").bytes, 400);
    bad("garbage after the object", WireReply::json("{}}").bytes, 400);
    bad("zero bytes", WireReply::json(QByteArray(5, '\0')).bytes, 400);
    bad("nested too deep", WireReply::json(QByteArray(100000, '[')).bytes, 400);
    bad("shorter than promised",
        "HTTP/1.1 200 OK\r\nContent-Length: 100\r\nConnection: close\r\n\r\n{\"a\":1", 400);
    bad("chunk size is garbage",
        "HTTP/1.1 200 OK\r\nTransfer-Encoding: chunked\r\n\r\nzz\r\n{}\r\n", 204);
}

void HTTPClientTest::outcome()
{
    QFETCH(QByteArray, reply);
    QFETCH(int, dripBytes);
    QFETCH(QByteArray, response);
    QFETCH(int, code);
    QFETCH(int, status);

    WireReply wire = WireReply::raw(reply);
    wire.dripBytes = dripBytes;
    server->setReply(wire);
    HTTPClient client(localhost, server->port(), false, false);
    Outcome outcome(&client);
    client.get(QStringLiteral("/"), QVariantMap(), true);
    QTRY_COMPARE(outcome.count(), 1);
    if (response.isEmpty()) {
        QCOMPARE(outcome.error.count(), 1);
        QCOMPARE(outcome.code(), code);
        QCOMPARE(outcome.status(), status);
    } else {
        QCOMPARE(QJsonDocument::fromVariant(outcome.response()).toJson(QJsonDocument::Compact),
                 response);
    }
    QCoreApplication::processEvents();
    QCOMPARE(outcome.count(), 1);
}

void HTTPClientTest::resetMidBody()
{
    server->setReply(
        WireReply::raw("HTTP/1.1 200 OK\r\nContent-Length: 100\r\n\r\n{\"a\":1", Ending::Reset));
    HTTPClient client(localhost, server->port(), false, false);
    Outcome outcome(&client);
    client.get(QStringLiteral("/"), QVariantMap(), true);
    QTRY_COMPARE(outcome.count(), 1);
    QCOMPARE(outcome.code(), -2);
    // The reset can overtake the body in the socket.
    QVERIFY(outcome.status() == 400 || outcome.status() == 204);
}

void HTTPClientTest::refused()
{
    HTTPClient client(localhost, MisbehavingServer::deadPort(), false, false);
    Outcome outcome(&client);
    QTest::ignoreMessage(QtDebugMsg, "HTTP error");
    QTest::ignoreMessage(QtDebugMsg, "HTTP bad data: empty response");
    client.get(QStringLiteral("/"), QVariantMap(), true);
    QTRY_COMPARE(outcome.count(), 1);
    QCOMPARE(outcome.code(), -2);
    QCOMPARE(outcome.status(), 204);
}

void HTTPClientTest::endlessBodyIsCutOff()
{
    constexpr int tooManyBytes = 65 * 1024 * 1024;
    server->setReply(WireReply::raw("HTTP/1.1 200 OK\r\n\r\n" + QByteArray(tooManyBytes, '1'),
                                    Ending::KeepOpen));
    HTTPClient client(localhost, server->port(), false, false);
    Outcome outcome(&client);
    QTest::ignoreMessage(QtWarningMsg, "HTTP reply is too large: \"127.0.0.1\"");
    client.get(QStringLiteral("/"), QVariantMap(), false);
    QTRY_COMPARE_WITH_TIMEOUT(outcome.count(), 1, 60000);
    QCOMPARE(outcome.code(), -2);
    QCOMPARE(outcome.status(), 204);
    QTRY_COMPARE(server->openConnections(), 0);
}

void HTTPClientTest::binaryBodyIsNotParsed()
{
    const QByteArray bytes("\xff\xd8\0{not json", 12);
    server->setReply(WireReply::body(bytes, "image/jpeg"));
    HTTPClient client(localhost, server->port(), false, false);
    Outcome outcome(&client);
    client.get(QStringLiteral("/"), QVariantMap(), false);
    QTRY_COMPARE(outcome.finished.count(), 1);
    QCOMPARE(outcome.response().toByteArray(), bytes);

    server->setReply(WireReply::body("", "image/jpeg"));
    client.get(QStringLiteral("/"), QVariantMap(), false);
    QTRY_COMPARE(outcome.error.count(), 1);
    QCOMPARE(outcome.status(), 204);
}

void HTTPClientTest::requestOnTheWire_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<QString>("path");
    QTest::addColumn<QVariantMap>("params");
    QTest::addColumn<bool>("json");
    QTest::addColumn<QByteArray>("requestLine");

    QTest::newRow("get") << "GET"
                         << "/public/roster" << QVariantMap{{"sessionId", "abc"}} << true
                         << QByteArray("GET /public/roster?sessionId=abc HTTP/1.1");
    QTest::newRow("two slashes") << "GET"
                                 << "//layouts" << QVariantMap{{"sessionId", "abc"}} << true
                                 << QByteArray("GET //layouts?sessionId=abc HTTP/1.1");
    QTest::newRow("three slashes")
        << "GET"
        << "///a//b" << QVariantMap{{"x", "y"}} << true << QByteArray("GET ///a//b?x=y HTTP/1.1");
    QTest::newRow("two slashes before what must be encoded")
        << "GET" << QString::fromUtf8("//a b%41/Ж") << QVariantMap() << true
        << QByteArray("GET //a%20b%2541/%D0%96 HTTP/1.1");
    QTest::newRow("key order")
        << "GET"
        << "//preview/live"
        << QVariantMap{{"server", "s"}, {"camera", 7}, {"sessionId", ""}, {"q", 0}, {"Z", 1u}}
        << false
        << QByteArray("GET //preview/live?Z=1&camera=7&q=0&server=s"
                      "&sessionId= HTTP/1.1");
    QTest::newRow("separators in values") << "GET"
                                          << "/p" << QVariantMap{{"a", "1&b=2#c d"}} << true
                                          << QByteArray("GET /p?a=1%26b%3D2%23c%20d HTTP/1.1");
    QTest::newRow("Cyrillic") << "GET"
                              << "/p" << QVariantMap{{"a", QString::fromUtf8("Ж")}} << true
                              << QByteArray("GET /p?a=%D0%96 HTTP/1.1");
    QTest::newRow("encoded beforehand") << "GET"
                                        << "/p" << QVariantMap{{"a", QByteArray("%2B%26")}} << true
                                        << QByteArray("GET /p?a=%2B%26 HTTP/1.1");
    QTest::newRow("path is decoded text")
        << "GET"
        << "/a?b%41 c" << QVariantMap() << true << QByteArray("GET /a%3Fb%2541%20c HTTP/1.1");
    QTest::newRow("delete") << "DELETE"
                            << "/public/sessions/" << QVariantMap() << true
                            << QByteArray("DELETE /public/sessions/ HTTP/1.1");
    QTest::newRow("delete with query")
        << "DELETE"
        << "/x" << QVariantMap{{"a", "b"}} << true << QByteArray("DELETE /x?a=b HTTP/1.1");
    QTest::newRow("post") << "POST"
                          << "//layouts" << QVariantMap{{"sessionId", "abc"}} << true
                          << QByteArray("POST //layouts?sessionId=abc HTTP/1.1");
}

void HTTPClientTest::requestOnTheWire()
{
    QFETCH(QString, method);
    QFETCH(QString, path);
    QFETCH(QVariantMap, params);
    QFETCH(bool, json);
    QFETCH(QByteArray, requestLine);

    HTTPClient client(localhost, server->port(), false, false);
    Outcome outcome(&client);
    const QByteArray body("a\0b&=%", 6);
    if (method == QLatin1String("GET"))
        client.get(path, params, json);
    else if (method == QLatin1String("DELETE"))
        client.del(path, params, json);
    else
        client.post(path, params, body, QStringLiteral("application/json"), json);
    QTRY_COMPARE(outcome.finished.count(), 1);

    QCOMPARE(server->requests().size(), 1);
    const WireRequest request = server->requests().constFirst();
    QCOMPARE(request.requestLine(), requestLine);
    QCOMPARE(request.header("Accept"), json ? QByteArray("application/json") : QByteArray("*/*"));
    if (method == QLatin1String("POST")) {
        QCOMPARE(request.header("Content-Type"), QByteArray("application/json"));
        QCOMPARE(request.body, body);
    } else {
        QCOMPARE(request.header("Content-Type"), QByteArray());
        QCOMPARE(request.body, QByteArray());
    }
}

void HTTPClientTest::queryDoesNotLeak()
{
    HTTPClient client(localhost, server->port(), false, false);
    Outcome outcome(&client);
    client.get(QStringLiteral("/a"), {{QStringLiteral("x"), 1}}, true);
    QTRY_COMPARE(outcome.count(), 1);
    client.get(QStringLiteral("/b"), QVariantMap(), true);
    QTRY_COMPARE(outcome.count(), 2);
    client.post(QStringLiteral("/c"), QByteArray("d"), QStringLiteral("text/plain"), true);
    QTRY_COMPARE(outcome.count(), 3);
    QCOMPARE(server->requests().value(0).target(), QByteArray("/a?x=1"));
    QCOMPARE(server->requests().value(1).path(), QByteArray("/b"));
    QVERIFY(!server->requests().value(1).target().contains("x=1"));
    QVERIFY(!server->requests().value(2).target().contains("x=1"));
    QCOMPARE(server->requests().value(2).body, QByteArray("d"));
}

void HTTPClientTest::redirectOnTheWire_data()
{
    QTest::addColumn<QString>("method");
    QTest::addColumn<int>("status");
    QTest::addColumn<QByteArray>("target");

    for (const int status : {301, 302, 303, 307, 308}) {
        QTest::addRow("GET %d", status) << "GET" << status << QByteArray("/second");
        QTest::addRow("POST %d", status) << "POST" << status << QByteArray("/second");
    }
    QTest::newRow("two slashes") << "GET" << 302 << QByteArray("//layouts?sessionId=abc");
    QTest::newRow("encoded query") << "GET" << 302 << QByteArray("/s?a=%26%2B%20%25&b=%D0%96");
}

void HTTPClientTest::redirectOnTheWire()
{
    QFETCH(QString, method);
    QFETCH(int, status);
    QFETCH(QByteArray, target);

    // Another server, so that host and port of the target count.
    MisbehavingServer second;
    QVERIFY(second.start());
    second.setHandler([&](const WireRequest &request) {
        return request.path() == "/third" ? WireReply::json(R"({"done":true})")
                                          : WireReply::redirect(server->origin() + "/third");
    });
    server->setHandler([&](const WireRequest &request) {
        return request.path() == "/third" ? WireReply::json(R"({"done":true})")
                                          : WireReply::redirect(second.origin() + target, status);
    });

    HTTPClient client(localhost, server->port(), false, false);
    Outcome outcome(&client);
    if (method == QLatin1String("GET"))
        client.get(QStringLiteral("/first"), {{QStringLiteral("x"), 1}}, true);
    else
        client.post(QStringLiteral("/first"), QByteArray("body"), QStringLiteral("a/b"), true);
    QTRY_COMPARE(outcome.count(), 1);
    QCOMPARE(outcome.response().toMap().value(QStringLiteral("done")).toBool(), true);

    QList<WireRequest> repeated = second.requests() + server->requests().mid(1);
    QCOMPARE(repeated.size(), 2);
    QCOMPARE(repeated.at(0).target(), target);
    QCOMPARE(repeated.at(1).target(), QByteArray("/third"));
    for (const WireRequest &request : qAsConst(repeated)) {
        QCOMPARE(request.method(), method.toLatin1());
        QCOMPARE(request.header("Accept"), QByteArray("application/json"));
        if (method == QLatin1String("POST")) {
            QCOMPARE(request.body, QByteArray("body"));
            QCOMPARE(request.header("Content-Type"), QByteArray("a/b"));
        }
    }
}

void HTTPClientTest::redirectThatFails_data()
{
    QTest::addColumn<QByteArray>("location");
    QTest::addColumn<int>("code");
    QTest::addColumn<int>("status");

    QTest::newRow("relative") << QByteArray("/other") << -2 << 204;
    QTest::newRow("relative without a slash") << QByteArray("other?x=1") << -2 << 204;
    QTest::newRow("dead port") << "http://127.0.0.1:" +
                                      QByteArray::number(MisbehavingServer::deadPort()) + "/"
                               << -2 << 204;
    QTest::newRow("bad host") << QByteArray("http://[bad/") << -3 << 302;
    QTest::newRow("bad port") << QByteArray("http://127.0.0.1:99999999/") << -3 << 302;
    QTest::newRow("local file") << QByteArray("file:///etc/hostname") << -3 << 302;
    QTest::newRow("inline document") << QByteArray("data:application/json,{}") << -3 << 302;
}

void HTTPClientTest::redirectThatFails()
{
    QFETCH(QByteArray, location);
    QFETCH(int, code);
    QFETCH(int, status);

    server->setReply(WireReply::redirect(location));
    HTTPClient client(localhost, server->port(), false, false);
    Outcome outcome(&client);
    client.get(QStringLiteral("/"), QVariantMap(), false);
    QTRY_COMPARE(outcome.count(), 1);
    QCOMPARE(outcome.error.count(), 1);
    QCOMPARE(outcome.code(), code);
    QCOMPARE(outcome.status(), status);
    QCOMPARE(server->requests().size(), 1);
}

void HTTPClientTest::redirectLoopIsFollowed()
{
    constexpr int loops = 60;
    server->setHandler([&](const WireRequest &) {
        return server->requests().size() > loops ? WireReply::json("[]")
                                                 : WireReply::redirect(server->origin() + "/loop");
    });
    HTTPClient client(localhost, server->port(), false, false);
    Outcome outcome(&client);
    client.get(QStringLiteral("/loop"), QVariantMap(), true);
    QTRY_COMPARE_WITH_TIMEOUT(outcome.finished.count(), 1, 30000);
    QCOMPARE(server->requests().size(), loops + 1);
}

void HTTPClientTest::redirectedDeleteEndsSilently()
{
    server->setReply(WireReply::redirect(server->origin() + "/other"));
    HTTPClient client(localhost, server->port(), false, false);
    Outcome outcome(&client);
    client.del(QStringLiteral("/"), QVariantMap(), true);
    QTRY_COMPARE(server->requests().size(), 1);
    QTRY_COMPARE(server->openConnections(), 0);
    // An exchange begun later has its outcome, so the first one would have had its own.
    HTTPClient later(localhost, server->port(), false, false);
    Outcome laterOutcome(&later);
    server->setReply(WireReply::json("{}"));
    later.get(QStringLiteral("/later"), QVariantMap(), true);
    QTRY_COMPARE(laterOutcome.count(), 1);
    QCOMPARE(outcome.count(), 0);
    QCOMPARE(server->requests().size(), 2);
}

void HTTPClientTest::pathIsUrlAfterRedirect()
{
    server->setHandler([&](const WireRequest &request) {
        return request.path() == "/first" ? WireReply::redirect(server->origin() + "/second")
                                          : WireReply::json("{}");
    });
    HTTPClient client(localhost, server->port(), false, false);
    Outcome outcome(&client);
    client.get(QStringLiteral("/first"), QVariantMap(), true);
    QTRY_COMPARE(outcome.finished.count(), 1);
    client.get(QString::fromLatin1(server->origin()) + QStringLiteral("/whole?a=b"),
               {{QStringLiteral("x"), 1}}, true);
    QTRY_COMPARE(outcome.finished.count(), 2);
    QCOMPARE(server->requests().constLast().target(), QByteArray("/whole?a=b"));
    client.get(QStringLiteral("/first"), QVariantMap(), true);
    QTRY_COMPARE(outcome.error.count(), 1);
    QCOMPARE(outcome.status(), 204);
}

void HTTPClientTest::newAddress()
{
    MisbehavingServer other;
    QVERIFY(other.start());
    HTTPClient client(localhost, server->port(), false, false);
    Outcome outcome(&client);
    client.get(QStringLiteral("/a"), QVariantMap(), true);
    client.setAddress(QStringLiteral("localhost"), other.port());
    QTRY_COMPARE(outcome.count(), 1);
    client.get(QStringLiteral("/b"), QVariantMap(), true);
    QTRY_COMPARE(outcome.count(), 2);
    QCOMPARE(server->requests().size(), 1);
    QCOMPARE(other.requests().size(), 1);
    QCOMPARE(other.requests().constFirst().header("Host"),
             "localhost:" + QByteArray::number(other.port()));
}

void HTTPClientTest::noProxyUnlessAskedFor()
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
        HTTPClient client(QStringLiteral("0.0.0.0"), server->port(), false, useProxy);
        Outcome outcome(&client);
        client.get(QStringLiteral("/"), QVariantMap(), true);
        QTRY_COMPARE(outcome.count(), 1);
        QCOMPARE(outcome.finished.count(), useProxy ? 0 : 1);
    }
}

void HTTPClientTest::deadClientIsSilent()
{
    server->setReply(WireReply::silence());
    auto *client = new HTTPClient(localhost, server->port(), false, false);
    Outcome outcome(client);
    client->get(QStringLiteral("/"), QVariantMap(), true);
    client->get(QStringLiteral("/"), QVariantMap(), true);
    QTRY_COMPARE(server->requests().size(), 2);
    delete client;
    QTRY_COMPARE(server->openConnections(), 0);
    QCOMPARE(outcome.count(), 0);
}

// Some callers leave the object behind after a failure.
void HTTPClientTest::failuresHoldNoThreads()
{
    server->setReply(WireReply::json(""));
    QList<QSharedPointer<HTTPClient>> leftBehind;
    const auto failOnce = [&] {
        leftBehind.append(
            QSharedPointer<HTTPClient>::create(localhost, server->port(), false, false));
        QSignalSpy error(leftBehind.constLast().data(), &HTTPClient::error);
        leftBehind.constLast()->get(QStringLiteral("/"), QVariantMap(), true);
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

QTEST_GUILESS_MAIN(HTTPClientTest)
#include "HTTPClientTest.moc"
