// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Test.h"

namespace ZorvaneClient::Tests {

/// A fresh key and self-signed certificate for `localhost`, made by the `openssl` program.
/// The files lie in the working directory.
class TlsIdentity
{
public:
    /// Files are named after `name`. See isValid().
    explicit TlsIdentity(const QString &name) : certificatePath(name + ".crt")
    {
        const QString arguments =
            "req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -days 2 "
            "-subj /CN=localhost -addext subjectAltName=DNS:localhost,IP:127.0.0.1 -keyout"_s;
        QFile certificate(certificatePath);
        QFile key(name + ".key");
        QProcess openssl;
        openssl.start("openssl"_s, arguments.split(' ')
                                       << key.fileName() << "-out" << certificatePath);
        if (!openssl.waitForFinished() || openssl.exitCode() != 0 ||
            !certificate.open(QIODevice::ReadOnly) || !key.open(QIODevice::ReadOnly))
            return;
        ownCertificate = QSslCertificate(&certificate);
        ownKey = QSslKey(&key, QSsl::Ec);
    }

    bool isValid() const { return !ownCertificate.isNull() && !ownKey.isNull(); }
    QSslCertificate certificate() const { return ownCertificate; }
    QSslKey privateKey() const { return ownKey; }
    /// PEM file that makes the certificate trusted.
    QString certificateFile() const { return certificatePath; }

private:
    QString certificatePath;
    QSslCertificate ownCertificate;
    QSslKey ownKey;
};

} // namespace ZorvaneClient::Tests
