// SPDX-License-Identifier: MIT
#include "API/StreamerClient.h"

#include <QNetworkProxy>
#include <QSignalSpy>
#include <QTest>
#include <QUrl>

#include "API/RestClient.h"
#include "App/Settings.h"
#include "tests/support/RecordingProxy.h"
#include "tests/support/ScriptedService.h"

using ZorvaneClient::API::RestClient;
using ZorvaneClient::API::StreamerClient;
using namespace ZorvaneClient::Tests;

namespace App = ZorvaneClient::App;

namespace {

const QString localhost = QStringLiteral("127.0.0.1");

void useProxy(int port, const QString &user = QString(), const QString &password = QString())
{
    App::Settings &settings = App::settings();
    settings.setValue(QStringLiteral("proxy/useProxy"), port != 0);
    settings.setValue(QStringLiteral("proxy/host"), localhost);
    settings.setValue(QStringLiteral("proxy/port"), port);
    settings.setValue(QStringLiteral("proxy/username"), user);
    settings.setValue(QStringLiteral("proxy/password"), password);
}

} // namespace

class StreamerClientTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void init();
    void serviceOnTheWire();
    void lanServerOnTheWire();
    void failuresPassThrough();
    void newAddress();
    void serviceGoesByProxy_data();
    void serviceGoesByProxy();
    void lanServerNeverGoesByProxy();
    void proxySwitchedOff();
    void proxyThatRefuses();

private:
    ScriptedService service;
};

void StreamerClientTest::initTestCase()
{
    QVERIFY(service.start());
}

void StreamerClientTest::init()
{
    service.reset();
    useProxy(0);
    QNetworkProxy::setApplicationProxy(QNetworkProxy(QNetworkProxy::DefaultProxy));
}

void StreamerClientTest::serviceOnTheWire()
{
    const QByteArray jpeg("\xff\xd8\xff\0", 4);
    service.answer("GET", "//preview/live", WireReply::body(jpeg, "image/jpeg"));
    service.answer("GET", "//archive/list", WireReply::json("[1]"));
    StreamerClient client;
    QSignalSpy received(&client, &StreamerClient::responseReceived);
    client.request(QStringLiteral("preview/live"),
                   {{QStringLiteral("server"), "s"}, {QStringLiteral("camera"), 1}}, false);
    QTRY_COMPARE(received.count(), 1);
    QCOMPARE(received.at(0).at(0).value<QVariant>().toByteArray(), jpeg);
    client.request(QStringLiteral("archive/list"), QVariantMap());
    QTRY_COMPARE(received.count(), 2);
    QCOMPARE(received.at(1).at(0).value<QVariant>().toList(), QVariantList{1.0});

    QCOMPARE(service.requests().at(0).target(), QByteArray("//preview/live?camera=1&server=s"));
    QCOMPARE(service.requests().at(0).header("Accept"), QByteArray("*/*"));
    QCOMPARE(service.requests().at(1).path(), QByteArray("//archive/list"));
    QCOMPARE(service.requests().at(1).header("Accept"), QByteArray("application/json"));
}

void StreamerClientTest::lanServerOnTheWire()
{
    MisbehavingServer lan;
    QVERIFY(lan.start());
    StreamerClient client(localhost, lan.port());
    QSignalSpy received(&client, &StreamerClient::responseReceived);
    client.request(QStringLiteral("vs_info/"),
                   {{QStringLiteral("sessionId"), QUrl::toPercentEncoding(QStringLiteral("p&1"))},
                    {QStringLiteral("server"), "1"}});
    QTRY_COMPARE(received.count(), 1);
    QCOMPARE(lan.requests().constFirst().requestLine(),
             QByteArray("GET /vs_info/?server=1&sessionId=p%261 HTTP/1.1"));
}

void StreamerClientTest::failuresPassThrough()
{
    StreamerClient client(localhost, MisbehavingServer::deadPort());
    QSignalSpy failed(&client, &StreamerClient::error);
    client.request(QStringLiteral("streams/info"), QVariantMap());
    QTRY_COMPARE(failed.count(), 1);
    QCOMPARE(failed.at(0), (QList<QVariant>{-2, 204}));
}

void StreamerClientTest::newAddress()
{
    MisbehavingServer lan;
    QVERIFY(lan.start());
    StreamerClient client(localhost, MisbehavingServer::deadPort());
    QSignalSpy received(&client, &StreamerClient::responseReceived);
    client.setAddress(QStringLiteral("localhost"), lan.port());
    client.request(QStringLiteral("streams/info"), QVariantMap());
    QTRY_COMPARE(received.count(), 1);
    QCOMPARE(lan.requests().constFirst().path(), QByteArray("/streams/info"));
}

void StreamerClientTest::serviceGoesByProxy_data()
{
    QTest::addColumn<QString>("user");
    QTest::addColumn<QString>("password");
    QTest::newRow("open") << ""
                          << "";
    QTest::newRow("with a password") << "user"
                                     << "p@ss:word";
}

void StreamerClientTest::serviceGoesByProxy()
{
    QFETCH(QString, user);
    QFETCH(QString, password);

    RecordingProxy proxy;
    QVERIFY(proxy.start());
    if (!user.isEmpty())
        proxy.requireAuthentication(user.toUtf8(), password.toUtf8());
    useProxy(proxy.port(), user, password);
    service.succeed("GET", "/public/roster", "{}");
    service.answer("GET", "//archive/list", WireReply::json("[]"));

    RestClient rest;
    QSignalSpy restReceived(&rest, &RestClient::responseReceived);
    rest.request(QStringLiteral("public/roster"), QVariantMap());
    QTRY_COMPARE(restReceived.count(), 1);
    QCOMPARE(proxy.tunnels(), 1);
    StreamerClient streamer;
    QSignalSpy streamerReceived(&streamer, &StreamerClient::responseReceived);
    streamer.request(QStringLiteral("archive/list"), QVariantMap());
    QTRY_COMPARE(streamerReceived.count(), 1);
    QCOMPARE(proxy.tunnels(), 2);
    QVERIFY(proxy.heads().constLast().startsWith(
        "CONNECT localhost:" + QByteArray::number(service.server().port()) + " HTTP/1.1"));
    QCOMPARE(service.requests().constLast().path(), QByteArray("//archive/list"));
}

void StreamerClientTest::lanServerNeverGoesByProxy()
{
    RecordingProxy proxy;
    QVERIFY(proxy.start());
    useProxy(proxy.port());
    // What a desktop-wide proxy amounts to.
    QNetworkProxy::setApplicationProxy(
        QNetworkProxy(QNetworkProxy::HttpProxy, localhost, static_cast<quint16>(proxy.port())));
    MisbehavingServer lan;
    QVERIFY(lan.start());
    // An address that arrives here and that no rule for loopback keeps from a proxy.
    StreamerClient client(QStringLiteral("0.0.0.0"), lan.port());
    QSignalSpy received(&client, &StreamerClient::responseReceived);
    client.request(QStringLiteral("vs_info/"), QVariantMap());
    QTRY_COMPARE(received.count(), 1);
    QCOMPARE(lan.requests().size(), 1);
    QCOMPARE(proxy.heads().size(), 0);
}

void StreamerClientTest::proxySwitchedOff()
{
    RecordingProxy proxy;
    QVERIFY(proxy.start());
    useProxy(proxy.port());
    App::settings().setValue(QStringLiteral("proxy/useProxy"), false);
    service.answer("GET", "//archive/list", WireReply::json("[]"));
    StreamerClient client;
    QSignalSpy received(&client, &StreamerClient::responseReceived);
    client.request(QStringLiteral("archive/list"), QVariantMap());
    QTRY_COMPARE(received.count(), 1);
    QCOMPARE(proxy.heads().size(), 0);
}

void StreamerClientTest::proxyThatRefuses()
{
    RecordingProxy proxy;
    QVERIFY(proxy.start());
    proxy.requireAuthentication("user", "right");
    useProxy(proxy.port(), QStringLiteral("user"), QStringLiteral("wrong"));
    StreamerClient client;
    QSignalSpy failed(&client, &StreamerClient::error);
    client.request(QStringLiteral("archive/list"), QVariantMap());
    QTRY_COMPARE(failed.count(), 1);
    QCOMPARE(failed.at(0), (QList<QVariant>{-2, 204}));
    QCOMPARE(service.requests().size(), 0);
}

QTEST_GUILESS_MAIN(StreamerClientTest)
#include "StreamerClientTest.moc"
