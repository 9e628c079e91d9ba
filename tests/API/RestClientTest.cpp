// SPDX-License-Identifier: MIT
#include "API/RestClient.h"

#include "tests/support/Test.h"

#include "App/ServiceProfile.h"
#include "tests/support/ScriptedService.h"
#include "tests/support/TlsIdentity.h"

using ZorvaneClient::API::RestClient;

namespace App = ZorvaneClient::App;

namespace {

// What a service makes of a form body: one decoding of each key and value.
QMap<QByteArray, QString> decodedForm(const QByteArray &body)
{
    QMap<QByteArray, QString> form;
    for (const QByteArray &item : body.split('&')) {
        const auto equals = item.indexOf('=');
        QByteArray value = item.mid(equals + 1);
        value.replace('+', ' ');
        form.insert(item.left(equals), QString::fromUtf8(QByteArray::fromPercentEncoding(value)));
    }
    return form;
}

QString everyAsciiCharacter()
{
    QString text;
    for (char16_t code = 1; code < 128; ++code)
        text.append(QChar(code));
    return text;
}

} // namespace

class RestClientTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase() { QVERIFY(service.start()); }

    void init() { service.reset(); }

    void envelope_data()
    {
        QTest::addColumn<QByteArray>("body");
        QTest::addColumn<int>("status");
        QTest::addColumn<bool>("success");
        QTest::addColumn<QVariant>("response");
        QTest::addColumn<int>("code");
        QTest::addColumn<int>("reportedStatus");

        const auto good = [](const char *name, const QByteArray &body, const QVariant &response,
                             int status = 200) {
            QTest::newRow(name) << body << status << true << response << 0 << 0;
        };
        const auto bad = [](const char *name, const QByteArray &body, int code, int reportedStatus,
                            int status = 200) {
            QTest::newRow(name) << body << status << false << QVariant() << code << reportedStatus;
        };
        good("object", R"({"success":true,"response":{"a":"b"}})", QVariantMap{{"a", "b"}});
        good("success as text", R"({"success":"true","response":"x"})", QVariant("x"));
        good("success with status 500", R"({"success":true,"response":"x"})", QVariant("x"), 500);
        bad("service error", R"({"success":false,"response":{"code":10016}})", 10016, 500);
        bad("status is not looked at", R"({"success":false,"response":{"code":10001}})", 10001, 500,
            403);
        bad("response is no object", R"({"success":false,"response":[1]})", 0, 500);
        bad("no success", R"({"response":{"a":"b"}})", -2, 400);
        bad("no JSON", "busy", -2, 400, 502);
        bad("empty body", "", -2, 204);
    }

    void envelope()
    {
        QFETCH(QByteArray, body);
        QFETCH(int, status);
        QFETCH(bool, success);
        QFETCH(QVariant, response);
        QFETCH(int, code);
        QFETCH(int, reportedStatus);

        service.answer("GET", "/public/roster", WireReply::json(body, status));
        RestClient client;
        QSignalSpy received(&client, &RestClient::responseReceived);
        QSignalSpy failed(&client, &RestClient::error);
        client.request("public/roster"_s, QVariantMap());
        QTRY_COMPARE(received.count() + failed.count(), 1);
        QCOMPARE(received.count() == 1, success);
        if (success) {
            QCOMPARE(received.at(0).at(0).value<QVariant>(), response);
        } else {
            QCOMPARE(failed.at(0).at(0).toInt(), code);
            QCOMPARE(failed.at(0).at(1).toInt(), reportedStatus);
        }
    }

    void requestOnTheWire_data()
    {
        QTest::addColumn<QString>("command");
        QTest::addColumn<int>("operation");
        QTest::addColumn<QVariantMap>("params");
        QTest::addColumn<QByteArray>("requestLine");
        QTest::addColumn<QByteArray>("contentType");
        QTest::addColumn<QByteArray>("body");

        const QByteArray form = "application/x-www-form-urlencoded";
        const auto row = [](const char *command, QNetworkAccessManager::Operation operation,
                            const QVariantMap &params, const char *requestLine,
                            const QByteArray &contentType, const char *body) {
            QTest::newRow(requestLine)
                << command << int(operation) << params << QByteArray(requestLine) << contentType
                << QByteArray(body);
        };
        row("public/sessions/abc", QNetworkAccessManager::DeleteOperation, {{"b", 2}, {"a", "1"}},
            "DELETE /public/sessions/abc?a=1&b=2 HTTP/1.1", "", "");
        row("/public/x", QNetworkAccessManager::PostOperation,
            {{"sessionId", "abc"}, {"degrees", -90}, {"Big", 1u}}, "POST //public/x HTTP/1.1", form,
            "Big=1&degrees=-90&sessionId=abc");
        row("x", QNetworkAccessManager::PostOperation, {{"a", "1&2=3+4 %2B"}}, "POST /x HTTP/1.1",
            form, "a=1%262%3D3+4%20%2B");
    }

    void requestOnTheWire()
    {
        QFETCH(QString, command);
        QFETCH(int, operation);
        QFETCH(QVariantMap, params);
        QFETCH(QByteArray, requestLine);
        QFETCH(QByteArray, contentType);
        QFETCH(QByteArray, body);

        RestClient client;
        client.request(command, params, static_cast<QNetworkAccessManager::Operation>(operation));
        QTRY_COMPARE(service.requests().size(), 1);
        const WireRequest request = service.requests().constFirst();
        QCOMPARE(request.requestLine(), requestLine);
        QCOMPARE(request.header("Accept"), QByteArray("application/json"));
        QCOMPARE(request.header("Content-Type"), contentType);
        QCOMPARE(request.body, body);
    }

    void encodedValueArrives_data()
    {
        rows<QString>(
            {"value"},
            {
                {"every ASCII character twice", everyAsciiCharacter() + everyAsciiCharacter()},
                {"looks encoded", "100%25 %2B%26 +&=#;%"},
                {"Cyrillic", QString::fromUtf8("Пароль+Ё&ъ")},
                {"beyond the basic plane", QString::fromUtf8("\xf0\x9f\x8e\xa5")},
            });
    }

    void encodedValueArrives()
    {
        const auto [value] = row<QString>();

        RestClient client;
        client.post("public/sessions"_s, {{"login"_s, QUrl::toPercentEncoding(value)},
                                          {"password"_s, QUrl::toPercentEncoding(value)}});
        QTRY_COMPARE(service.requests().size(), 1);
        const auto form = decodedForm(service.requests().constFirst().body);
        QCOMPARE(form.value("login"), value);
        QCOMPARE(form.value("password"), value);
        QCOMPARE(form.size(), 2);
    }

    void certificateOfAStranger()
    {
        const TlsIdentity stranger("stranger"_s);
        QVERIFY(stranger.isValid());
        MisbehavingServer server;
        QVERIFY(server.start(&stranger));
        const App::ServiceProfile own = App::ServiceProfile::current();
        App::ServiceProfile other;
        other.apiHost = "localhost"_s;
        other.apiPort = server.port();
        App::ServiceProfile::setCurrent(other);
        RestClient client;
        App::ServiceProfile::setCurrent(own);

        QSignalSpy failed(&client, &RestClient::error);
        client.request("public/roster"_s, QVariantMap());
        QTRY_COMPARE(failed.count(), 1);
        QCOMPARE(failed.at(0).at(0).toInt(), -2);
        QCOMPARE(failed.at(0).at(1).toInt(), 204);
        QCOMPARE(server.requests().size(), 0);
    }

    void redirectOverTls()
    {
        service.answer("GET", "//layouts",
                       WireReply::redirect(service.server().origin() + "//moved?sessionId=abc"));
        service.succeed("GET", "//moved", R"("here")");
        RestClient client;
        QSignalSpy received(&client, &RestClient::responseReceived);
        client.request("/layouts"_s, {{"sessionId"_s, "abc"}});
        QTRY_COMPARE(received.count(), 1);
        QCOMPARE(service.requests().constLast().target(), QByteArray("//moved?sessionId=abc"));
    }

private:
    ScriptedService service;
};

QTEST_GUILESS_MAIN(RestClientTest)
#include "RestClientTest.moc"
