// SPDX-License-Identifier: MIT
#include "tests/support/TlsIdentity.h"

#include <QFile>
#include <QProcess>

namespace ZorvaneClient {
namespace Tests {

namespace {

QByteArray contentOf(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

} // namespace

TlsIdentity::TlsIdentity(const QString &name) : certificatePath(name + QStringLiteral(".crt"))
{
    const QString keyPath = name + QStringLiteral(".key");
    QProcess openssl;
    const QStringList arguments =
        QStringLiteral("req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -days 2 "
                       "-subj /CN=localhost -addext subjectAltName=DNS:localhost,IP:127.0.0.1")
            .split(QLatin1Char(' '));
    openssl.start(QStringLiteral("openssl"),
                  arguments + QStringList{QStringLiteral("-keyout"), keyPath,
                                          QStringLiteral("-out"), certificatePath});
    if (!openssl.waitForFinished() || openssl.exitCode() != 0)
        return;
    ownCertificate = QSslCertificate(contentOf(certificatePath), QSsl::Pem);
    ownKey = QSslKey(contentOf(keyPath), QSsl::Ec, QSsl::Pem);
}

} // namespace Tests
} // namespace ZorvaneClient
