// SPDX-License-Identifier: MIT
#include <QSignalSpy>
#include <QSslConfiguration>
#include <QSslError>
#include <QSslSocket>
#include <QtTest>

#include "App/ServiceProfile.h"
#include "tests/support/MisbehavingServer.h"
#include "tests/support/TlsIdentity.h"

using namespace ZorvaneClient;
using App::ServiceProfile;
using Tests::MisbehavingServer;
using Tests::TlsIdentity;

namespace {

QString writeFile(const QString &fileName, const QByteArray &content)
{
    QFile file(fileName);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        return QString();
    return fileName;
}

ServiceProfile profileOf(const QByteArray &content)
{
    return ServiceProfile::fromFile(writeFile(QStringLiteral("service.ini"), content));
}

QByteArray contentOf(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Connects as the program's requests do, and tells what the certificate check said.
QList<QSslError::SslError> handshakeErrors(const MisbehavingServer &server,
                                           const QString &hostName = QStringLiteral("localhost"))
{
    QSslSocket socket;
    QSignalSpy done(&socket, &QSslSocket::encrypted);
    QSignalSpy ended(&socket, &QSslSocket::disconnected);
    QList<QSslError::SslError> errors;
    QObject::connect(&socket, QOverload<const QList<QSslError> &>::of(&QSslSocket::sslErrors),
                     [&errors](const QList<QSslError> &found) {
                         for (const QSslError &error : found)
                             errors.append(error.error());
                     });
    socket.connectToHostEncrypted(QStringLiteral("localhost"), static_cast<quint16>(server.port()),
                                  hostName);
    constexpr int deadlineMs = 10000;
    if (!QTest::qWaitFor([&] { return !done.isEmpty() || !ended.isEmpty(); }, deadlineMs) ||
        (done.isEmpty() && errors.isEmpty()))
        errors.append(QSslError::UnspecifiedError);
    return errors;
}

} // namespace

class ServiceProfileTest : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void everyKeyIsRead();
    void badPortIsAWarning_data();
    void badPortIsAWarning();
    void unknownKeyIsAWarning();
    void valuesMayHoldCommasAndOtherLetters();
    void authorityIsAddedAndCheckingStaysOn();
    void unusableCertificateIsAWarning_data();
    void unusableCertificateIsAWarning();
    void systemAuthoritiesStay();

private:
    QScopedPointer<TlsIdentity> ours;
    QScopedPointer<TlsIdentity> stranger;
};

void ServiceProfileTest::initTestCase()
{
    ours.reset(new TlsIdentity(QStringLiteral("ours")));
    stranger.reset(new TlsIdentity(QStringLiteral("stranger")));
    QVERIFY(ours->isValid() && stranger->isValid());
}

void ServiceProfileTest::everyKeyIsRead()
{
    const ServiceProfile profile =
        profileOf("[service]\napiHost=api.test\napiPort=8443\nstreamingHost=media.test\n"
                  "streamingPort=65535\nflvHost=flv.test:8081\nredirectorHost=go.test\n"
                  "caCertificate=certs/ca.pem\n");
    QCOMPARE(profile.apiHost, QStringLiteral("api.test"));
    QCOMPARE(profile.apiPort, 8443);
    QCOMPARE(profile.streamingHost, QStringLiteral("media.test"));
    QCOMPARE(profile.streamingPort, 65535);
    QCOMPARE(profile.flvHost, QStringLiteral("flv.test:8081"));
    QCOMPARE(profile.redirectorHost, QStringLiteral("go.test"));
    QCOMPARE(profile.caCertificate, QStringLiteral("certs/ca.pem"));
}

void ServiceProfileTest::badPortIsAWarning_data()
{
    QTest::addColumn<QByteArray>("port");
    QTest::newRow("zero") << QByteArray("0");
    QTest::newRow("too great") << QByteArray("65536");
    QTest::newRow("no number") << QByteArray("none");
}

void ServiceProfileTest::badPortIsAWarning()
{
    QFETCH(QByteArray, port);
    QTest::ignoreMessage(QtWarningMsg,
                         "service.ini: port out of range: \"service/apiPort\" = \"" + port + '"');
    const ServiceProfile profile =
        profileOf("[service]\napiPort=" + port + "\nstreamingPort=8444\n");
    QCOMPARE(profile.apiPort, 0);
    QCOMPARE(profile.streamingPort, 8444);
}

void ServiceProfileTest::unknownKeyIsAWarning()
{
    QTest::ignoreMessage(QtWarningMsg, "service.ini: unknown key \"service/apihost\"");
    QCOMPARE(profileOf("[service]\napihost=a.test\n").apiHost, ServiceProfile().apiHost);
}

void ServiceProfileTest::valuesMayHoldCommasAndOtherLetters()
{
    const ServiceProfile profile = profileOf("[service]\ncaCertificate=ключи/a,b.pem\n");
    QCOMPARE(profile.caCertificate, QString::fromUtf8("ключи/a,b.pem"));
}

void ServiceProfileTest::authorityIsAddedAndCheckingStaysOn()
{
    MisbehavingServer ourServer;
    MisbehavingServer strangeServer;
    QVERIFY(ourServer.start(ours.data()) && strangeServer.start(stranger.data()));
    QVERIFY(!handshakeErrors(ourServer).isEmpty());

    ServiceProfile profile;
    profile.apiHost = QStringLiteral("localhost");
    profile.caCertificate = ours->certificateFile();
    ServiceProfile::setCurrent(profile);

    QCOMPARE(ServiceProfile::current().apiHost, QStringLiteral("localhost"));
    QVERIFY(handshakeErrors(ourServer).isEmpty());
    QVERIFY(!handshakeErrors(strangeServer).isEmpty());
    QCOMPARE(handshakeErrors(ourServer, QStringLiteral("other.example")),
             QList<QSslError::SslError>{QSslError::HostNameMismatch});
}

void ServiceProfileTest::unusableCertificateIsAWarning_data()
{
    QTest::addColumn<QByteArray>("content");
    const QByteArray good = contentOf(stranger->certificateFile());
    QTest::newRow("damaged") << QByteArray(good).replace(60, 200, QByteArray(200, 'A'));
    QTest::newRow("damaged second") << good + QByteArray(good).replace(60, 200, "AAAA");
}

void ServiceProfileTest::unusableCertificateIsAWarning()
{
    QFETCH(QByteArray, content);
    ServiceProfile profile;
    profile.caCertificate = writeFile(QStringLiteral("bad.pem"), content);
    const QList<QSslCertificate> before =
        QSslConfiguration::defaultConfiguration().caCertificates();
    QTest::ignoreMessage(QtWarningMsg, "service.ini: invalid certificate in \"bad.pem\"");
    ServiceProfile::setCurrent(profile);
    QCOMPARE(QSslConfiguration::defaultConfiguration().caCertificates(), before);
}

void ServiceProfileTest::systemAuthoritiesStay()
{
    ServiceProfile profile;
    profile.caCertificate = ours->certificateFile();
    ServiceProfile::setCurrent(profile);
    const QList<QSslCertificate> trusted =
        QSslConfiguration::defaultConfiguration().caCertificates();
    QVERIFY(trusted.contains(ours->certificate()));
    const QList<QSslCertificate> system = QSslConfiguration::systemCaCertificates();
    for (const QSslCertificate &certificate : system)
        QVERIFY(trusted.contains(certificate));
}

QTEST_GUILESS_MAIN(ServiceProfileTest)
#include "ServiceProfileTest.moc"
