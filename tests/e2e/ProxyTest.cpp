// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "API/Camera.h"
#include "App/Application.h"
#include "GUI/CameraWidget.h"
#include "GUI/LoginDialog.h"
#include "GUI/Player/VideoWidget.h"
#include "demo/client/DemoService.h"
#include "tests/e2e/EndToEnd.h"

namespace {

const QString proxyUser = "watcher"_s;
const QString proxyPassword = "p4ss"_s;

int freePort()
{
    QTcpServer server;
    server.listen(QHostAddress::LocalHost);
    return server.serverPort();
}

bool accepts(int port)
{
    QTcpSocket socket;
    socket.connectToHost(QHostAddress::LocalHost, static_cast<quint16>(port));
    return socket.waitForConnected(200);
}

} // namespace

/// Sign-in and pictures through a real proxy that wants a password.
class ProxyTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase()
    {
        DemoService::Options options;
        options.plain = true;
        options.servers = 1;
        options.cameras = 2;
        options.lanServers = 1;
        QVERIFY2(service.start(options), qPrintable(service.errorString()));
        useService(service);
        QVERIFY(service.writeLocalRoster("."_s));

        proxyPort = freePort();
        QFile configuration("tinyproxy.conf"_s);
        QVERIFY(configuration.open(QIODevice::WriteOnly));
        configuration.write("Port %1\nListen 127.0.0.1\nAllow 127.0.0.1\n"
                            "Timeout 60\nMaxClients 100\nLogLevel Connect\n"
                            "BasicAuth %2 %3\n"_s.arg(proxyPort)
                                .arg(proxyUser, proxyPassword)
                                .toUtf8());
        configuration.close();
        proxy.setProcessChannelMode(QProcess::MergedChannels);
        proxy.setStandardOutputFile("tinyproxy.log"_s);
        proxy.start("tinyproxy"_s, {"-d"_s, "-c"_s, configuration.fileName()});
        QVERIFY2(proxy.waitForStarted(), "tinyproxy is missing");
        QTRY_VERIFY(accepts(proxyPort));
    }

    void cleanupTestCase()
    {
        leave();
        proxy.terminate();
        if (!proxy.waitForFinished())
            proxy.kill();
        service.stop();
    }

    void signInAndPictureGoThroughTheProxy()
    {
        fillProxyForm(proxyPassword);
        QVERIFY(enter(service));
        QTRY_VERIFY_WITH_TIMEOUT(!proxyLog().isEmpty(), replyDeadlineMs);
        QTRY_VERIFY(proxyLog().contains("CONNECT 127.0.0.1:%1"_s.arg(service.apiPort())));

        DemoCamera camera;
        const QVector<DemoCamera> world = service.cameras();
        for (const DemoCamera &candidate : world) {
            if (!candidate.lan)
                camera = candidate;
        }
        QTRY_VERIFY_WITH_TIMEOUT(card(camera.server, camera.camera), pollDeadlineMs);
        GUI::CameraWidget *shown = card(camera.server, camera.camera);
        reveal(shown);
        QTest::mouseClick(shown, Qt::LeftButton);
        QVERIFY(showsMovingPicture(tile(), camera.number));
        QVERIFY(proxyLog().contains("http://127.0.0.1:%1/flv/live"_s.arg(service.flvPort())));
        QVERIFY(getsPreview(shown));
        QVERIFY(proxyLog().contains("CONNECT 127.0.0.1:%1"_s.arg(service.streamingPort())));
    }

    void lanCameraDoesNot()
    {
        const QVector<DemoCamera> world = service.cameras();
        const auto lan = std::find_if(world.begin(), world.end(),
                                      [](const DemoCamera &camera) { return camera.lan; });
        QVERIFY(lan != world.end());
        setClockAheadSeconds(60);
        QTRY_VERIFY_WITH_TIMEOUT(card(lan->server, lan->camera), pollDeadlineMs);
        setClockAheadSeconds(0);
        GUI::CameraWidget *shown = card(lan->server, lan->camera);
        reveal(shown);
        QTest::mouseClick(shown, Qt::LeftButton);
        QVERIFY(showsMovingPicture(tile(), lan->number));
        const QString lanPort = ":%1"_s.arg(service.lanPorts().first());
        QVERIFY2(!proxyLog().contains(lanPort), "the LAN camera went through the proxy");
    }

    void wrongProxyPasswordIsAFailedSignIn()
    {
        QVERIFY(leave());
        fillProxyForm("wrong"_s);
        const int before = service.requestCount("/public/sessions"_s);
        signIn(service.email(), service.password());
        auto *bar = loginDialog()->findChild<QStackedWidget *>("alertsBar"_s);
        QTRY_COMPARE_WITH_TIMEOUT(bar->currentWidget()->objectName(), "wrongEmailPassWgt"_s,
                                  replyDeadlineMs);
        QCOMPARE(service.requestCount("/public/sessions"_s), before);
    }

private:
    void fillProxyForm(const QString &password)
    {
        if (!loginDialog())
            qobject_cast<App::Application *>(qApp)->startLogin();
        GUI::LoginDialog *dialog = loginDialog();
        dialog->findChild<QRadioButton *>("proxyChoice"_s)->setChecked(true);
        const auto fill = [dialog](const char *name, const QString &text) {
            dialog->findChild<QLineEdit *>(QLatin1String(name))->setText(text);
        };
        fill("proxyHost", "127.0.0.1"_s);
        fill("proxyPort", QString::number(proxyPort));
        fill("proxyLogin", proxyUser);
        fill("proxyPassword", password);
    }

    QString proxyLog()
    {
        QFile log("tinyproxy.log"_s);
        return log.open(QIODevice::ReadOnly) ? QString::fromUtf8(log.readAll()) : QString();
    }

    DemoService service;
    QProcess proxy;
    int proxyPort = 0;
};

int main(int argc, char **argv)
{
    return runEndToEnd(argc, argv, [] { return std::make_unique<ProxyTest>(); });
}
#include "ProxyTest.moc"
