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
    openssl.start(QStringLiteral("openssl"),
                  {QStringLiteral("req"), QStringLiteral("-x509"), QStringLiteral("-newkey"),
                   QStringLiteral("ec"), QStringLiteral("-pkeyopt"),
                   QStringLiteral("ec_paramgen_curve:prime256v1"), QStringLiteral("-nodes"),
                   QStringLiteral("-days"), QStringLiteral("2"), QStringLiteral("-subj"),
                   QStringLiteral("/CN=localhost"), QStringLiteral("-addext"),
                   QStringLiteral("subjectAltName=DNS:localhost,IP:127.0.0.1"),
                   QStringLiteral("-keyout"), keyPath, QStringLiteral("-out"), certificatePath});
    if (!openssl.waitForFinished() || openssl.exitCode() != 0)
        return;
    ownCertificate = QSslCertificate(contentOf(certificatePath), QSsl::Pem);
    ownKey = QSslKey(contentOf(keyPath), QSsl::Ec, QSsl::Pem);
}

bool TlsIdentity::isValid() const
{
    return !ownCertificate.isNull() && !ownKey.isNull();
}

QSslCertificate TlsIdentity::certificate() const
{
    return ownCertificate;
}

QSslKey TlsIdentity::privateKey() const
{
    return ownKey;
}

QString TlsIdentity::certificateFile() const
{
    return certificatePath;
}

} // namespace Tests
} // namespace ZorvaneClient
