// SPDX-License-Identifier: MIT
#pragma once

#include <QSharedPointer>
#include <QString>
#include <QVariant>

namespace ZorvaneClient {
namespace App {

namespace Internal {
class SettingsPrivate;
}

/// The program's one settings file, `ZorvaneClient.ini` in the working directory.
/// A file that can't be read or written is not reported: keys read as their defaults.
class Settings
{
public:
    QVariant value(const QString &key, const QVariant &defaultValue = QVariant()) const;
    void setValue(const QString &key, const QVariant &value);
    /// For log lines only.
    QString fileName() const;

private:
    friend Settings &settings();
    Settings();
    Q_DISABLE_COPY(Settings)

    QSharedPointer<Internal::SettingsPrivate> d;
};

/// The shared object, made on first use. GUI thread only.
Settings &settings();

} // namespace App
} // namespace ZorvaneClient
