// SPDX-License-Identifier: MIT
#include <QFile>
#include <QLineEdit>
#include <QProcess>
#include <QRadioButton>
#include <QTcpServer>
#include <QTcpSocket>
#include <QtTest>

#include "API/Camera.h"
#include "App/Application.h"
#include "GUI/CameraWidget.h"
#include "GUI/LoginDialog.h"
#include "GUI/Player/VideoWidget.h"
#include "tests/e2e/EndToEnd.h"
#include "tests/support/DemoService.h"

using namespace ZorvaneClient;
using namespace ZorvaneClient::Tests;

/// Sign-in and pictures through a real proxy that wants a password.
class ProxyTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void cleanupTestCase();
    void signInAndPictureGoThroughTheProxy();
    void lanCameraDoesNot();
    void wrongProxyPasswordIsAFailedSignIn();

private:
    void fillProxyForm(const QString &password);
    QString proxyLog();

    DemoService service;
    QProcess proxy;
    int proxyPort = 0;
};

namespace {

const QString proxyUser = QStringLiteral("watcher");
const QString proxyPassword = QStringLiteral("p4ss");

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

void ProxyTest::initTestCase()
{
    DemoService::Options options;
    options.plain = true;
    options.servers = 1;
    options.cameras = 2;
    options.lanServers = 1;
    QVERIFY2(service.start(options), qPrintable(service.errorString()));
    useService(service);
    QVERIFY(service.writeLocalRoster(QStringLiteral(".")));

    proxyPort = freePort();
    QFile configuration(QStringLiteral("tinyproxy.conf"));
    QVERIFY(configuration.open(QIODevice::WriteOnly));
    configuration.write(QStringLiteral("Port %1\nListen 127.0.0.1\nAllow 127.0.0.1\n"
                                       "Timeout 60\nMaxClients 100\nLogLevel Connect\n"
                                       "BasicAuth %2 %3\n")
                            .arg(proxyPort)
                            .arg(proxyUser, proxyPassword)
                            .toUtf8());
    configuration.close();
    proxy.setProcessChannelMode(QProcess::MergedChannels);
    proxy.setStandardOutputFile(QStringLiteral("tinyproxy.log"));
    proxy.start(QStringLiteral("tinyproxy"),
                {QStringLiteral("-d"), QStringLiteral("-c"), configuration.fileName()});
    QVERIFY2(proxy.waitForStarted(), "tinyproxy is missing");
    QTRY_VERIFY(accepts(proxyPort));
}

void ProxyTest::cleanupTestCase()
{
    leave();
    proxy.terminate();
    if (!proxy.waitForFinished())
        proxy.kill();
    service.stop();
}

void ProxyTest::fillProxyForm(const QString &password)
{
    if (!loginDialog())
        qobject_cast<App::Application *>(qApp)->startLogin();
    GUI::LoginDialog *dialog = loginDialog();
    dialog->findChild<QRadioButton *>(QStringLiteral("proxyChoice"))->setChecked(true);
    const auto fill = [dialog](const char *name, const QString &text) {
        dialog->findChild<QLineEdit *>(QLatin1String(name))->setText(text);
    };
    fill("proxyHost", QStringLiteral("127.0.0.1"));
    fill("proxyPort", QString::number(proxyPort));
    fill("proxyLogin", proxyUser);
    fill("proxyPassword", password);
}

QString ProxyTest::proxyLog()
{
    QFile log(QStringLiteral("tinyproxy.log"));
    return log.open(QIODevice::ReadOnly) ? QString::fromUtf8(log.readAll()) : QString();
}

void ProxyTest::wrongProxyPasswordIsAFailedSignIn()
{
    QVERIFY(leave());
    fillProxyForm(QStringLiteral("wrong"));
    const int before = service.requestCount(QStringLiteral("/public/sessions"));
    signIn(service.email(), service.password());
    auto *bar = loginDialog()->findChild<QStackedWidget *>(QStringLiteral("alertsBar"));
    QTRY_COMPARE_WITH_TIMEOUT(bar->currentWidget()->objectName(),
                              QStringLiteral("wrongEmailPassWgt"), replyDeadlineMs);
    QCOMPARE(service.requestCount(QStringLiteral("/public/sessions")), before);
}

void ProxyTest::signInAndPictureGoThroughTheProxy()
{
    fillProxyForm(proxyPassword);
    QVERIFY(enter(service));
    QTRY_VERIFY_WITH_TIMEOUT(!proxyLog().isEmpty(), replyDeadlineMs);
    QTRY_VERIFY(proxyLog().contains(QStringLiteral("CONNECT 127.0.0.1:%1").arg(service.apiPort())));

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
    QVERIFY(
        proxyLog().contains(QStringLiteral("http://127.0.0.1:%1/flv/live").arg(service.flvPort())));
    QVERIFY(getsPreview(shown));
    QVERIFY(
        proxyLog().contains(QStringLiteral("CONNECT 127.0.0.1:%1").arg(service.streamingPort())));
}

void ProxyTest::lanCameraDoesNot()
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
    const QString lanPort = QStringLiteral(":%1").arg(service.lanPorts().first());
    QVERIFY2(!proxyLog().contains(lanPort), "the LAN camera went through the proxy");
}

int main(int argc, char **argv)
{
    return runEndToEnd(argc, argv, [] { return std::make_unique<ProxyTest>(); });
}
#include "ProxyTest.moc"
