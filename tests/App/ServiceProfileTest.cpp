// SPDX-License-Identifier: MIT
#include "tests/support/Test.h"

#include "App/ServiceProfile.h"
#include "tests/support/MisbehavingServer.h"
#include "tests/support/TlsIdentity.h"

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
    return ServiceProfile::fromFile(writeFile("service.ini"_s, content));
}

QByteArray contentOf(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

// Connects as the program's requests do, and tells what the certificate check said.
QList<QSslError::SslError> handshakeErrors(const MisbehavingServer &server,
                                           const QString &hostName = "localhost"_s)
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
    socket.connectToHostEncrypted("localhost"_s, static_cast<quint16>(server.port()), hostName);
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
    void initTestCase()
    {
        ours.reset(new TlsIdentity("ours"_s));
        stranger.reset(new TlsIdentity("stranger"_s));
        QVERIFY(ours->isValid() && stranger->isValid());
    }

    void everyKeyIsRead()
    {
        const ServiceProfile profile =
            profileOf("[service]\napiHost=api.test\napiPort=8443\nstreamingHost=media.test\n"
                      "streamingPort=65535\nflvHost=flv.test:8081\nredirectorHost=go.test\n"
                      "caCertificate=certs/ca.pem\n");
        QCOMPARE(profile.apiHost, "api.test"_s);
        QCOMPARE(profile.apiPort, 8443);
        QCOMPARE(profile.streamingHost, "media.test"_s);
        QCOMPARE(profile.streamingPort, 65535);
        QCOMPARE(profile.flvHost, "flv.test:8081"_s);
        QCOMPARE(profile.redirectorHost, "go.test"_s);
        QCOMPARE(profile.caCertificate, "certs/ca.pem"_s);
    }

    void badPortIsAWarning_data()
    {
        rows<QByteArray>({"port"}, {
                                       {"zero", QByteArray("0")},
                                       {"too great", QByteArray("65536")},
                                       {"no number", QByteArray("none")},
                                   });
    }

    void badPortIsAWarning()
    {
        const auto [port] = row<QByteArray>();
        QTest::ignoreMessage(
            QtWarningMsg, "service.ini: port out of range: \"service/apiPort\" = \"" + port + '"');
        const ServiceProfile profile =
            profileOf("[service]\napiPort=" + port + "\nstreamingPort=8444\n");
        QCOMPARE(profile.apiPort, 0);
        QCOMPARE(profile.streamingPort, 8444);
    }

    void unknownKeyIsAWarning()
    {
        QTest::ignoreMessage(QtWarningMsg, "service.ini: unknown key \"service/apihost\"");
        QCOMPARE(profileOf("[service]\napihost=a.test\n").apiHost, ServiceProfile().apiHost);
    }

    void valuesMayHoldCommasAndOtherLetters()
    {
        const ServiceProfile profile = profileOf("[service]\ncaCertificate=ключи/a,b.pem\n");
        QCOMPARE(profile.caCertificate, QString::fromUtf8("ключи/a,b.pem"));
    }

    void authorityIsAddedAndCheckingStaysOn()
    {
        MisbehavingServer ourServer;
        MisbehavingServer strangeServer;
        QVERIFY(ourServer.start(ours.data()) && strangeServer.start(stranger.data()));
        QVERIFY(!handshakeErrors(ourServer).isEmpty());

        ServiceProfile profile;
        profile.apiHost = "localhost"_s;
        profile.caCertificate = ours->certificateFile();
        ServiceProfile::setCurrent(profile);

        QCOMPARE(ServiceProfile::current().apiHost, "localhost"_s);
        QVERIFY(handshakeErrors(ourServer).isEmpty());
        QVERIFY(!handshakeErrors(strangeServer).isEmpty());
        QCOMPARE(handshakeErrors(ourServer, "other.example"_s),
                 QList<QSslError::SslError>{QSslError::HostNameMismatch});
    }

    void unusableCertificateIsAWarning_data()
    {
        const QByteArray good = contentOf(stranger->certificateFile());
        rows<QByteArray>({"content"},
                         {
                             {"damaged", QByteArray(good).replace(60, 200, QByteArray(200, 'A'))},
                             {"damaged second", good + QByteArray(good).replace(60, 200, "AAAA")},
                         });
    }

    void unusableCertificateIsAWarning()
    {
        const auto [content] = row<QByteArray>();
        ServiceProfile profile;
        profile.caCertificate = writeFile("bad.pem"_s, content);
        const QList<QSslCertificate> before =
            QSslConfiguration::defaultConfiguration().caCertificates();
        QTest::ignoreMessage(QtWarningMsg, "service.ini: invalid certificate in \"bad.pem\"");
        ServiceProfile::setCurrent(profile);
        QCOMPARE(QSslConfiguration::defaultConfiguration().caCertificates(), before);
    }

    void systemAuthoritiesStay()
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

private:
    QScopedPointer<TlsIdentity> ours;
    QScopedPointer<TlsIdentity> stranger;
};

QTEST_GUILESS_MAIN(ServiceProfileTest)
#include "ServiceProfileTest.moc"
