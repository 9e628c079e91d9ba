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

    bool isValid() const;
    QSslCertificate certificate() const;
    QSslKey privateKey() const;
    /// PEM file that makes the certificate trusted.
    QString certificateFile() const;

private:
    QString certificatePath;
    QSslCertificate ownCertificate;
    QSslKey ownKey;
};

} // namespace Tests
} // namespace ZorvaneClient
