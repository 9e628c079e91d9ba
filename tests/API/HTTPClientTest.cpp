// SPDX-License-Identifier: MIT
#include "API/HTTPClient.h"

#include "tests/API/CloudFixture.h"

#include "API/CloudExchange.h"
#include "API/RestClient.h"
#include "tests/support/TlsIdentity.h"

Q_DECLARE_METATYPE(ZorvaneClient::Tests::WireReply)

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

/// Method and target, what is accepted, and type and text of the body.
QByteArrayList parts(const WireRequest &request)
{
    return {request.method() + ' ' + request.target(), request.header("Accept"),
            request.header("Content-Type"), request.body};
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
        told.clear();
        connectTo(localhost, *server);
    }

    void outcomes_data()
    {
        const QByteArray object = R"({"a":1})";
        const QByteArray ok = "HTTP/1.1 200 OK\r\n";
        const QByteArray chunked = ok + "Transfer-Encoding: chunked\r\n\r\n";
        const QByteArray chunks = chunked + "3\r\n{\"a\r\n4\r\n\":1}\r\n0\r\n\r\n";
        const QByteArray cutOff = ok + "Content-Length: 100\r\nConnection: close\r\n\r\n{\"a\":1";
        const QByteArray endless = ok + "\r\n" + QByteArray(65 * 1024 * 1024, '1');
        const auto deadAddress =
            "http://127.0.0.1:%1/"_s.arg(MisbehavingServer::deadPort()).toUtf8();
        // Several outcomes stand side by side where the network decides.
        rows<WireReply, QByteArray>(
            {"reply", "told"},
            {{"any content type", WireReply::body(object, "text/html"), '[' + object + ']'},
             {"404 with JSON", WireReply::json(object, 404), '[' + object + ']'},
             {"byte by byte", byBytes(WireReply::json(object), 1), '[' + object + ']'},
             {"chunked", byBytes(WireReply::raw(chunks), 7), '[' + object + ']'},
             {"to the end", WireReply::raw("HTTP/1.0 200 OK\r\n\r\n{}"), "[{}]"},
             {"empty body", WireReply::json(""), "[-2,204]"},
             {"connection closed at once", WireReply::raw(""), "[-2,204]"},
             {"closed in the head", WireReply::raw(ok + "Content-Le"), "[-2,204]"},
             {"not HTTP", WireReply::raw("220 ready\r\n"), "[-2,204]"},
             {"garbage after the object", WireReply::json("{}}"), "[-2,400]"},
             {"nested too deep", WireReply::json(QByteArray(100000, '[')), "[-2,400]"},
             {"shorter than promised", WireReply::raw(cutOff), "[-2,400]"},
             {"reset in the body", WireReply::raw(cutOff, Ending::Reset), "[-2,400]|[-2,204]"},
             {"chunk size is garbage", WireReply::raw(chunked + "zz\r\n{}\r\n"), "[-2,204]"},
             {"endless body", WireReply::raw(endless, Ending::KeepOpen), "[-2,204]"},
             {"relative redirect", WireReply::redirect("/other"), "[-2,204]"},
             {"redirect to a dead port", WireReply::redirect(deadAddress), "[-2,204]"},
             {"redirect to a bad host", WireReply::redirect("http://[bad/"), "[-3,302]"},
             {"redirect to a local file", WireReply::redirect("file:///etc/passwd"), "[-3,302]"}});
    }

    void outcomes()
    {
        const auto [reply, expected] = row<WireReply, QByteArray>();
        server->setReply(reply);
        client->get("/"_s, QVariantMap(), true);
        QTRY_VERIFY_WITH_TIMEOUT(!told.isEmpty(), 60000);
        QTRY_COMPARE(server->openConnections(), 0);
        QVERIFY2(expected.split('|').contains(told), told);
        // Some callers leave their client behind after a failure.
        QTRY_VERIFY(!told.startsWith("[-") || networkThreadCount() == 0);
    }

    void requestOnTheWire_data()
    {
        rows<QString, QVariantMap, QByteArray>(
            {"request", "params", "target"},
            {{"picture", "GET //preview", {{"i", ""}, {"Z", 1u}}, "//preview?Z=1&i="},
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
        const QByteArray type = "application/json";
        const QByteArrayList expected{method.toLatin1() + ' ' + target, json ? type : "*/*",
                                      post ? type : "", post ? body : QByteArray()};
        QCOMPARE(parts(server->requests().first()), expected);
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
        const bool post = QByteArray(QTest::currentDataTag()).startsWith("POST");
        const QByteArray method = post ? "POST " : "GET ";
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

        QVERIFY(second.requests().size() == 1 && server->requests().size() == 2);
        QByteArrayList expected{method + target, "application/json", post ? "a/b" : "",
                                post ? "body" : ""};
        QCOMPARE(parts(second.requests().first()), expected);
        expected.first() = method + "/third";
        QCOMPARE(parts(server->requests().last()), expected);
    }

    void noProxyUnlessAskedFor()
    {
        const int deadPort = MisbehavingServer::deadPort();
        App::settings().setValue("proxy/useProxy"_s, true);
        App::settings().setValue("proxy/host"_s, localhost);
        App::settings().setValue("proxy/port"_s, deadPort);
        const QNetworkProxy wholeDesktop(QNetworkProxy::HttpProxy, localhost, quint16(deadPort));
        QNetworkProxy::setApplicationProxy(wholeDesktop);
        const auto restore = qScopeGuard([] {
            App::settings().setValue("proxy/useProxy"_s, false);
            QNetworkProxy::setApplicationProxy(QNetworkProxy::DefaultProxy);
        });
        // An address that arrives here and that no rule for loopback keeps from a proxy.
        for (const bool useProxy : {false, true}) {
            connectTo("0.0.0.0"_s, *server, false, useProxy);
            told.clear();
            client->get("/"_s, QVariantMap(), true);
            QTRY_COMPARE(told, QByteArray(useProxy ? "[-2,204]" : "[{}]"));
        }
    }

    void envelope_data()
    {
        rows<QByteArray, int, QByteArray>(
            {"body", "status", "told"},
            {{"success as text", R"({"success":"true","response":"x"})", 500, R"(["x"])"},
             {"failure", R"({"success":false,"response":{"code":10016}})", 403, "[10016,500]"},
             {"response is no object", R"({"success":false,"response":[1]})", 200, "[0,500]"},
             {"no success", R"({"response":{"a":"b"}})", 200, "[-2,400]"},
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
        connectTo("localhost"_s, other, true);
        client->get("/"_s, QVariantMap(), true);
        QTRY_COMPARE(told, QByteArray("[-2,204]"));
        QCOMPARE(other.requests().size(), 0);
    }

    void clientsLeftBehindAreBounded()
    {
        constexpr int beyond = 50;
        QList<QPointer<RestClient>> clients;
        for (int i = 0; i < Internal::maximumKeptClients + beyond; ++i) {
            clients.append(new RestClient);
            const auto nothing = [](auto &&...) {};
            Internal::watchExchange(&*clients.last(), Internal::OnError::Keep, nothing, nothing);
            emit clients.last()->error(1, 500);
        }
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        for (int i = 0; i < clients.size(); ++i)
            QCOMPARE(!clients.at(i).isNull(), i >= beyond);
    }

private:
    void connectTo(const QString &host, const MisbehavingServer &to, bool ssl = false,
                   bool useProxy = false)
    {
        client = QSharedPointer<HTTPClient>::create(host, to.port(), ssl, useProxy);
        listen(*client, &HTTPClient::finished, told);
    }

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
