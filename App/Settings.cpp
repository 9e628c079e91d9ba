// SPDX-License-Identifier: MIT
#include "App/Settings.h"

#include <QFile>
#include <QSettings>

#include "App/OwnerOnly.h"

namespace ZorvaneClient {
namespace App {

namespace Internal {

class SettingsPrivate
{
public:
    // It holds passwords. An empty file now, since the store would make one that others can
    // read for a moment.
    SettingsPrivate()
    {
        const OwnerOnlyFiles guard;
        QFile(store.fileName()).open(QIODevice::ReadWrite);
        restrictToOwner(store.fileName());
    }

    // No folder: the file lies in the working directory, beside the log.
    QSettings store{QStringLiteral("ZorvaneClient.ini"), QSettings::IniFormat};
};

} // namespace Internal

Settings::Settings() : d(new Internal::SettingsPrivate)
{
}

QVariant Settings::value(const QString &key, const QVariant &defaultValue) const
{
    return d->store.value(key, defaultValue);
}

void Settings::setValue(const QString &key, const QVariant &value)
{
    d->store.setValue(key, value);
}

QString Settings::fileName() const
{
    return d->store.fileName();
}

Settings &settings()
{
    static Settings shared;
    return shared;
}

} // namespace App
} // namespace ZorvaneClient
