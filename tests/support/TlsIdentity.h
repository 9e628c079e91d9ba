// SPDX-License-Identifier: MIT
#pragma once

#include <QSslCertificate>
#include <QSslKey>
#include <QString>

namespace ZorvaneClient {
namespace Tests {

/// A fresh key and self-signed certificate for `localhost`, made by the `openssl` program.
/// The files lie in the working directory.
class TlsIdentity
{
public:
    /// Files are named after `name`. See isValid().
    explicit TlsIdentity(const QString &name);

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

} // namespace Tests
} // namespace ZorvaneClient
