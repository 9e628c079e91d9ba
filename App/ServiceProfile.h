// SPDX-License-Identifier: MIT
#pragma once

#include <QString>
#include <QUrl>

namespace ZorvaneClient {
namespace App {

/// The hosts of the service that this process talks to. Built-in values unless the
/// deployment's `service.ini` in the working directory says otherwise.
struct ServiceProfile {
    QString apiHost = QStringLiteral("api.zorvane.example");
    int apiPort = 0; ///< 0: the default port of https
    QString streamingHost = QStringLiteral("streaming.zorvane.example");
    int streamingPort = 0; ///< 0: the default port of https
    /// May carry `:port`.
    QString flvHost = QStringLiteral("streaming.zorvane.example");
    QString redirectorHost = QStringLiteral("go.zorvane.example");
    QString caCertificate; ///< PEM file with further authorities; empty: none

    /// A page that opens in the user's browser.
    QUrl redirectorUrl(const QString &pathAndQuery) const;

    /// Reads `fileName`; a missing file or key leaves the built-in value. Unknown keys and
    /// ports out of range are warnings in the log and change nothing.
    static ServiceProfile fromFile(const QString &fileName);

    /// The profile in force.
    static const ServiceProfile &current();
    /// Puts `profile` in force and adds its authorities to those this process trusts.
    /// A certificate file that can't be used is a warning in the log.
    static void setCurrent(const ServiceProfile &profile);
};

} // namespace App
} // namespace ZorvaneClient
