// SPDX-License-Identifier: MIT
#include "tests/e2e/EndToEnd.h"

#include "App/Application.h"

namespace {

const QString proxyUser = "watcher"_s;
const QString proxyPassword = "p4ss"_s;

} // namespace

/// Sign-in and pictures through a real proxy that wants a password.
class ProxyTest : public EndToEndTest
{
    Q_OBJECT

public:
    ~ProxyTest() override
    {
        proxy.terminate();
        proxy.waitForFinished();
    }

private slots:
    void initTestCase()
    {
        startWorld(1, 2, 1);
        QVERIFY(service.writeLocalRoster("."_s));
        QTcpServer place;
        QVERIFY(place.listen(QHostAddress::LocalHost));
        proxyPort = place.serverPort();
        place.close();
        QFile configuration("tinyproxy.conf"_s);
        QVERIFY(configuration.open(QIODevice::WriteOnly));
        configuration.write("Port %1\nListen 127.0.0.1\nAllow 127.0.0.1\nTimeout 60\n"
                            "MaxClients 100\nLogLevel Connect\nBasicAuth %2 %3\n"_s.arg(proxyPort)
                                .arg(proxyUser, proxyPassword)
                                .toUtf8());
        configuration.close();
        proxy.setProcessChannelMode(QProcess::MergedChannels);
        proxy.setStandardOutputFile("tinyproxy.log"_s);
        proxy.start("tinyproxy"_s, {"-d"_s, "-c"_s, configuration.fileName()});
        QVERIFY2(proxy.waitForStarted(), "tinyproxy is missing");
        const auto accepts = [this] {
            QTcpSocket socket;
            socket.connectToHost(QHostAddress::LocalHost, proxyPort);
            return socket.waitForConnected(200);
        };
        QTRY_VERIFY(accepts());
    }

    void init() { QVERIFY(leave()); }

    void cloudGoesThroughItAndTheLanDoesNot()
    {
        fillProxyForm(proxyPassword);
        QVERIFY(enter(service));
        const DemoCamera cloud = firstCamera(false);
        QVERIFY(playsFromCard(cloud));
        QVERIFY(getsPreview(card(cloud.server, cloud.camera)));
        pollRoster();
        QVERIFY(playsFromCard(firstCamera(true)));
        for (const QString &wanted : {"CONNECT 127.0.0.1:%1"_s.arg(service.apiPort()),
                                      "CONNECT 127.0.0.1:%1"_s.arg(service.streamingPort()),
                                      "http://127.0.0.1:%1/flv/live"_s.arg(service.flvPort())})
            QTRY_VERIFY2(proxyLog().contains(wanted), qPrintable(wanted));
        QVERIFY(!proxyLog().contains(":%1"_s.arg(service.lanPorts().first())));
    }

    void wrongProxyPasswordIsAFailedSignIn()
    {
        fillProxyForm("wrong"_s);
        const int before = service.requestCount("/public/sessions"_s);
        signIn(service.email(), service.password());
        auto *bar = part<QStackedWidget>(loginDialog(), "alertsBar");
        QTRY_COMPARE_WITH_TIMEOUT(bar->currentWidget()->objectName(), "wrongEmailPassWgt"_s,
                                  replyDeadlineMs);
        QCOMPARE(service.requestCount("/public/sessions"_s), before);
    }

private:
    void fillProxyForm(const QString &password)
    {
        if (!loginDialog())
            App::application()->startLogin();
        part<QRadioButton>(loginDialog(), "proxyChoice")->setChecked(true);
        part<QLineEdit>(loginDialog(), "proxyHost")->setText("127.0.0.1"_s);
        part<QLineEdit>(loginDialog(), "proxyPort")->setText(QString::number(proxyPort));
        part<QLineEdit>(loginDialog(), "proxyLogin")->setText(proxyUser);
        part<QLineEdit>(loginDialog(), "proxyPassword")->setText(password);
    }

    static QString proxyLog()
    {
        QFile log("tinyproxy.log"_s);
        return log.open(QIODevice::ReadOnly) ? QString::fromUtf8(log.readAll()) : QString();
    }

    QProcess proxy;
    quint16 proxyPort = 0;
};

END_TO_END_MAIN(ProxyTest)
#include "ProxyTest.moc"
