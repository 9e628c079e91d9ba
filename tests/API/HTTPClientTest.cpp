// SPDX-License-Identifier: MIT
#include "API/HTTPClient.h"

#include "tests/support/Test.h"

#include "API/CloudExchange.h"
#include "API/RestClient.h"
#include "App/Settings.h"
#include "tests/support/ScriptedService.h"
#include "tests/support/TlsIdentity.h"

Q_DECLARE_METATYPE(ZorvaneClient::Tests::WireReply)

using namespace ZorvaneClient::API;
using Ending = WireReply::Ending;

namespace {

const QString localhost = "127.0.0.1"_s;

QByteArray compact(const QVariantList &list)
{
    return QJsonDocument(QJsonArray::fromVariantList(list)).toJson(QJsonDocument::Compact);
}

/// Adds to `told` what the client tells: `[response]`, or `[code,status]` of a failure.
template <typename Client, typename Signal>
void listen(const Client &client, Signal received, QByteArray &told)
{
    QObject::connect(&client, received,
                     [&told](const QVariant &response) { told += compact({response}); });
    QObject::connect(&client, &Client::error, [&told](int code, int status) {
        told += compact({code, status});
    });
}

WireReply byBytes(WireReply reply, int dripBytes)
{
    reply.dripBytes = dripBytes;
    return reply;
}

/// Request line, what is accepted, and type and text of the body.
QByteArrayList parts(const WireRequest &request)
{
    return {request.requestLine(), request.header("Accept"), request.header("Content-Type"),
            request.body};
}

int threadCount()
{
    return int(QDir("/proc/self/task"_s).entryList(QDir::Dirs).size());
}

} // namespace

/// Exchanges over real connections, and the envelope of the service.
class HTTPClientTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(service.start()); }

    void init()
    {
        service.reset();
        server = QSharedPointer<MisbehavingServer>::create();
        QVERIFY(server->start());
        client = QSharedPointer<HTTPClient>::create(localhost, server->port(), false, false);
        told.clear();
        listen(*client, &HTTPClient::finished, told);
    }

    void outcomes_data()
    {
        const QByteArray ok = "HTTP/1.1 200 OK\r\n";
        const QByteArray chunked = ok + "Transfer-Encoding: chunked\r\n\r\n";
        const QByteArray cutOff = ok + "Content-Length: 100\r\nConnection: close\r\n\r\n{\"a\":1";
        const QByteArray deadPort = QByteArray::number(MisbehavingServer::deadPort());
        constexpr int tooManyBytes = 65 * 1024 * 1024;
        // Several outcomes stand side by side where the network decides.
        rows<WireReply, QByteArray>(
            {"reply", "told"},
            {{"object", WireReply::json(R"({"a":1})"), R"([{"a":1}])"},
             {"any content type", WireReply::body("{}", "text/html"), "[{}]"},
             {"404 with JSON", WireReply::json(R"({"a":1})", 404), R"([{"a":1}])"},
             {"byte by byte", byBytes(WireReply::json(R"({"a":1})"), 1), R"([{"a":1}])"},
             {"chunked",
              byBytes(WireReply::raw(chunked + "3\r\n{\"a\r\n4\r\n\":1}\r\n0\r\n\r\n"), 7),
              R"([{"a":1}])"},
             {"to the end of the connection", WireReply::raw("HTTP/1.0 200 OK\r\n\r\n{\"a\":1}"),
              R"([{"a":1}])"},
             {"empty body", WireReply::json(""), "[-2,204]"},
             {"connection closed at once", WireReply::raw(""), "[-2,204]"},
             {"closed in the head", WireReply::raw(ok + "Content-Le"), "[-2,204]"},
             {"not HTTP", WireReply::raw("SSH-2.0-OpenSSH_9.2\r\n"), "[-2,204]"},
             {"blank body", WireReply::json(" "), "[-2,400]"},
             {"garbage after the object", WireReply::json("{}}"), "[-2,400]"},
             {"nested too deep", WireReply::json(QByteArray(100000, '[')), "[-2,400]"},
             {"shorter than promised", WireReply::raw(cutOff), "[-2,400]"},
             {"reset in the body", WireReply::raw(cutOff, Ending::Reset), "[-2,400]|[-2,204]"},
             {"chunk size is garbage", WireReply::raw(chunked + "zz\r\n{}\r\n"), "[-2,204]"},
             {"endless body",
              WireReply::raw(ok + "\r\n" + QByteArray(tooManyBytes, '1'), Ending::KeepOpen),
              "[-2,204]"},
             {"redirect to nowhere", WireReply::redirect(""), "[-2,204]"},
             {"relative redirect", WireReply::redirect("/other"), "[-2,204]"},
             {"redirect to a dead port", WireReply::redirect("http://127.0.0.1:" + deadPort + "/"),
              "[-2,204]"},
             {"redirect to a bad host", WireReply::redirect("http://[bad/"), "[-3,302]"},
             {"redirect to a local file", WireReply::redirect("file:///etc/hostname"),
              "[-3,302]"}});
    }

    void outcomes()
    {
        const auto [reply, expected] = row<WireReply, QByteArray>();
        server->setReply(reply);
        client->get("/"_s, QVariantMap(), true);
        QTRY_VERIFY_WITH_TIMEOUT(!told.isEmpty(), 60000);
        QTRY_COMPARE(server->openConnections(), 0);
        QVERIFY2(expected.split('|').contains(told), told);
    }

    void requestOnTheWire_data()
    {
        rows<QString, QVariantMap, QByteArray>(
            {"request", "params", "target"},
            {{"picture",
              "GET //preview/live",
              {{"camera", 7}, {"sessionId", ""}, {"Z", 1u}},
              "//preview/live?Z=1&camera=7&sessionId="},
             {"marks", "GET /p", {{"a", "1&b=2#c d"}}, "/p?a=1%26b%3D2%23c%20d"},
             {"encoded", "GET /p", {{"a", QByteArray("%2B%26")}}, "/p?a=%2B%26"},
             {"marks in the path", "GET /a?b%41 c", {}, "/a%3Fb%2541%20c"},
             {"delete", "DELETE /x", {{"a", "b"}}, "/x?a=b"},
             {"post", "POST //layouts", {{"sessionId", "abc"}}, "//layouts?sessionId=abc"}});
    }

    void requestOnTheWire()
    {
        const auto [asked, params, target] = row<QString, QVariantMap, QByteArray>();
        const QString method = asked.section(' ', 0, 0);
        const QString path = asked.section(' ', 1);
        const bool post = method == "POST"_s;
        const bool json = !path.contains("preview"_s);
        const QByteArray body("a\0b&=%", 6);
        askBefore(!json);
        if (method == "GET"_s)
            client->get(path, params, json);
        else if (method == "DELETE"_s)
            client->del(path, params, json);
        else
            client->post(path, params, body, "application/json"_s, json);
        QTRY_COMPARE(told, QByteArray(json ? "[{}]" : "[\"{}\"]"));

        QCOMPARE(server->requests().size(), 1);
        const QByteArrayList expected{method.toLatin1() + ' ' + target + " HTTP/1.1",
                                      json ? "application/json" : "*/*",
                                      post ? "application/json" : "", post ? body : QByteArray()};
        QCOMPARE(parts(server->requests().constFirst()), expected);
    }

    void redirectOnTheWire_data()
    {
        QTest::addColumn<int>("status");
        for (const int status : {301, 302, 303, 307, 308}) {
            QTest::addRow("POST %d", status) << status;
            QTest::addRow("GET %d", status) << status;
        }
    }

    void redirectOnTheWire()
    {
        QFETCH(int, status);
        const QByteArray target = "//layouts?sessionId=abc";
        const QByteArray method = QByteArray(QTest::currentDataTag()).split(' ').first();
        const bool post = method == "POST";
        askBefore(!post);
        // Another server, so that host and port of the target count.
        MisbehavingServer second;
        QVERIFY(second.start());
        second.setReply(WireReply::redirect(server->origin() + "/third"));
        const WireReply away = WireReply::redirect(second.origin() + target, status);
        server->setHandler([away](const WireRequest &request) {
            return request.path() == "/third" ? WireReply::json("{}") : away;
        });
        if (post)
            client->post("/first"_s, QByteArray("body"), "a/b"_s, true);
        else
            client->get("/first"_s, {{"x"_s, 1}}, true);
        QTRY_COMPARE(told, QByteArray("[{}]"));

        QCOMPARE(second.requests().size(), 1);
        QCOMPARE(server->requests().size(), 2);
        QByteArrayList expected{method + ' ' + target + " HTTP/1.1", "application/json",
                                post ? "a/b" : "", post ? "body" : ""};
        QCOMPARE(parts(second.requests().constFirst()), expected);
        expected.first() = method + " /third HTTP/1.1";
        QCOMPARE(parts(server->requests().constLast()), expected);
    }

    void noProxyUnlessAskedFor()
    {
        const int deadPort = MisbehavingServer::deadPort();
        App::settings().setValue("proxy/useProxy"_s, true);
        App::settings().setValue("proxy/host"_s, localhost);
        App::settings().setValue("proxy/port"_s, deadPort);
        // What a desktop-wide proxy amounts to.
        QNetworkProxy::setApplicationProxy(
            {QNetworkProxy::HttpProxy, localhost, quint16(deadPort)});
        const auto restore = qScopeGuard([] {
            App::settings().setValue("proxy/useProxy"_s, false);
            QNetworkProxy::setApplicationProxy(QNetworkProxy::DefaultProxy);
        });
        // An address that arrives here and that no rule for loopback keeps from a proxy.
        for (const bool useProxy : {false, true}) {
            HTTPClient asking("0.0.0.0"_s, server->port(), false, useProxy);
            told.clear();
            listen(asking, &HTTPClient::finished, told);
            asking.get("/"_s, QVariantMap(), true);
            QTRY_COMPARE(told, QByteArray(useProxy ? "[-2,204]" : "[{}]"));
        }
    }

    void envelope_data()
    {
        rows<QByteArray, int, QByteArray>(
            {"body", "status", "told"},
            {{"object", R"({"success":true,"response":{"a":"b"}})", 200, R"([{"a":"b"}])"},
             {"success as text", R"({"success":"true","response":"x"})", 200, R"(["x"])"},
             {"status is not looked at", R"({"success":true,"response":"x"})", 500, R"(["x"])"},
             {"failure", R"({"success":false,"response":{"code":10016}})", 403, "[10016,500]"},
             {"response is no object", R"({"success":false,"response":[1]})", 200, "[0,500]"},
             {"no success", R"({"response":{"a":"b"}})", 200, "[-2,400]"},
             {"no JSON", "busy", 502, "[-2,400]"},
             {"empty body", "", 200, "[-2,204]"}});
    }

    void envelope()
    {
        const auto [body, status, expected] = row<QByteArray, int, QByteArray>();
        service.answer("GET", "/public/roster", WireReply::json(body, status));
        RestClient asking;
        listen(asking, &RestClient::responseReceived, told);
        asking.request("public/roster"_s, QVariantMap());
        QTRY_COMPARE(told, expected);
    }

    void certificateOfAStranger()
    {
        const TlsIdentity stranger("stranger"_s);
        MisbehavingServer other;
        QVERIFY(stranger.isValid() && other.start(&stranger));
        client = QSharedPointer<HTTPClient>::create("localhost"_s, other.port(), true, false);
        listen(*client, &HTTPClient::finished, told);
        client->get("/"_s, QVariantMap(), true);
        QTRY_COMPARE(told, QByteArray("[-2,204]"));
        QCOMPARE(other.requests().size(), 0);
    }

    // Some callers leave their client behind after a failure.
    void failuresHoldNoThreads()
    {
        server->setReply(WireReply::json(""));
        QList<QSharedPointer<QObject>> leftBehind;
        const int threads = threadCount();
        for (int i = 0; i < 20; ++i) {
            const auto http =
                QSharedPointer<HTTPClient>::create(localhost, server->port(), false, false);
            const auto rest = QSharedPointer<RestClient>::create();
            leftBehind << http << rest;
            listen(*http, &HTTPClient::finished, told);
            listen(*rest, &RestClient::responseReceived, told);
            http->get("/"_s, QVariantMap(), true);
            rest->request("public/roster"_s, QVariantMap());
        }
        QTRY_COMPARE_WITH_TIMEOUT(told.count("[-2,204]") + told.count("[10001,500]"), 40, 30000);
        // A few more are there to look up names.
        QTRY_VERIFY(threadCount() < threads + 10);
    }

    void clientsLeftBehindAreBounded()
    {
        constexpr int beyond = 50;
        QList<QPointer<RestClient>> clients;
        for (int i = 0; i < Internal::maximumKeptClients + beyond; ++i) {
            clients.append(new RestClient);
            const auto nothing = [](auto &&...) {};
            Internal::watchExchange(clients.last().data(), Internal::OnError::Keep, nothing,
                                    nothing);
            emit clients.last()->error(1, 500);
        }
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        for (int i = 0; i < clients.size(); ++i)
            QCOMPARE(!clients.at(i).isNull(), i >= beyond);
    }

private:
    /// A request that must leave no trace in the client's next one.
    void askBefore(bool json)
    {
        client->post("/before"_s, {{"before"_s, 1}}, "before", "text/plain"_s, json);
        QTRY_VERIFY(!told.isEmpty());
        told.clear();
        server->clearRequests();
    }

    ScriptedService service;
    QSharedPointer<MisbehavingServer> server;
    QSharedPointer<HTTPClient> client;
    QByteArray told;
};

QTEST_GUILESS_MAIN(HTTPClientTest)
#include "HTTPClientTest.moc"
