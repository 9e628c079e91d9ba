// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "tests/companion/Clips.h"
#include "tests/support/PlayerProcess.h"
#include "tests/support/StreamServer.h"

namespace {

constexpr int deadline = 20'000;
const QByteArray streamUrl = "http://streams.zorvane.example:8080/flv/live?q=1";

} // namespace

/// Streams through a proxy, and not through one.
class CompanionProxyTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        clip = Clips::quarters(QSize(160, 96), 1000);
        QVERIFY(!clip.isEmpty());
        StreamScript script;
        script.clip = clip;
        proxy.setScript(script);
        QVERIFY(proxy.start());
    }

    void plainProxy()
    {
        const auto before = proxy.heads().size();
        PlayerProcess player;
        player.setEnvironment("no_proxy", "*");
        QVERIFY(player.start(streamUrl, {proxyArgument()}));
        QTRY_VERIFY_WITH_TIMEOUT(player.frames() > 3, deadline);
        QCOMPARE(proxy.heads().size(), before + 1);
        const QByteArray head = proxy.heads().last();
        QVERIFY2(
            head.startsWith("GET http://streams.zorvane.example:8080/flv/live?q=1 HTTP/1.1\r\n"),
            head.constData());
        QVERIFY(!head.contains("Proxy-Authorization"));
    }

    void authorization_data()
    {
        rows<QByteArray, QByteArray>(
            {"user", "password"},
            {
                {"no user", QByteArray(), QByteArray("secret")},
                {"any characters", QByteArray("dom\\an na@x"), QByteArray("a:/@%41 \"?#\\&=")},
            });
    }

    void authorization()
    {
        const auto [user, password] = row<QByteArray, QByteArray>();
        proxy.requireProxyAuthorization(user, password);
        QList<QByteArray> more = {proxyArgument(user)};
        if (!password.isEmpty())
            more.append(":http-proxy-pwd=" + password);
        PlayerProcess player;
        QVERIFY(player.start(streamUrl, more));
        QTRY_VERIFY_WITH_TIMEOUT(player.frames() > 3, deadline);
        QVERIFY(proxy.heads().last().contains("Proxy-Authorization: Basic " +
                                              (user + ":" + password).toBase64()));
    }

    void wrongPassword()
    {
        proxy.requireProxyAuthorization("anna", "secret");
        PlayerProcess player;
        QVERIFY(player.start(streamUrl, {proxyArgument("anna"), ":http-proxy-pwd=wrong"}));
        QTRY_VERIFY_WITH_TIMEOUT(!player.isRunning(), deadline);
        QCOMPARE(player.frames(), 0);
        QCOMPARE(player.lastState(), 7);
    }

    /// A camera of the local network gets no proxy argument, so it goes direct.
    void environmentIsForgotten()
    {
        StreamServer server;
        QVERIFY(server.start(StreamScript::of(clip)));
        PlayerProcess player;
        player.setEnvironment(
            "http_proxy", "http://127.0.0.1:" + QByteArray::number(StreamServer::deadPort()) + "/");
        QVERIFY(player.start(server.url("/flv/live")));
        QTRY_VERIFY_WITH_TIMEOUT(player.frames() > 3, deadline);
        QVERIFY(server.heads().first().startsWith("GET /flv/live HTTP/1.1\r\n"));
    }

private:
    QByteArray proxyArgument(const QByteArray &user = QByteArray()) const
    {
        const QByteArray at = user.isEmpty() ? QByteArray() : user + "@";
        return ":http-proxy=http://" + at + "127.0.0.1:" + QByteArray::number(proxy.serverPort()) +
               "/";
    }

    StreamServer proxy;
    FlvClip clip;
};

QTEST_GUILESS_MAIN(CompanionProxyTest)
#include "CompanionProxyTest.moc"
