// SPDX-License-Identifier: MIT
#include "App/ServiceProfile.h"

#include <QDebug>
#include <QFile>
#include <QHash>
#include <QSettings>
#include <QSslCertificate>
#include <QSslConfiguration>

#include "App/QtShims.h"

namespace ZorvaneClient {
namespace App {

namespace {

constexpr int maxPort = 65535;

const QHash<QString, QString ServiceProfile::*> textFields{
    {QStringLiteral("service/apiHost"), &ServiceProfile::apiHost},
    {QStringLiteral("service/streamingHost"), &ServiceProfile::streamingHost},
    {QStringLiteral("service/flvHost"), &ServiceProfile::flvHost},
    {QStringLiteral("service/redirectorHost"), &ServiceProfile::redirectorHost},
    {QStringLiteral("service/caCertificate"), &ServiceProfile::caCertificate}};

const QHash<QString, int ServiceProfile::*> portFields{
    {QStringLiteral("service/apiPort"), &ServiceProfile::apiPort},
    {QStringLiteral("service/streamingPort"), &ServiceProfile::streamingPort}};

ServiceProfile &profileInForce()
{
    static ServiceProfile profile;
    return profile;
}

// The INI reader takes a comma for the separator of a list.
QString wholeText(const QVariant &value)
{
    return value.toStringList().join(QLatin1Char(','));
}

void readPort(const QString &value, const QString &key, int *port)
{
    bool parsed = false;
    const int number = value.toInt(&parsed);
    if (parsed && number >= 1 && number <= maxPort)
        *port = number;
    else
        qWarning() << "service.ini: port out of range:" << key << "=" << value;
}

// The default configuration is empty while the system's authorities are only looked up
// on demand, and that look-up ends with the first list that is set.
QList<QSslCertificate> trustedAuthorities(const QSslConfiguration &configuration)
{
    const QList<QSslCertificate> known = configuration.caCertificates();
    return known.isEmpty() ? QSslConfiguration::systemCaCertificates() : known;
}

void trustAuthorities(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly)) {
        qWarning() << "service.ini: cannot read CA certificate file" << fileName << ":"
                   << file.errorString();
        return;
    }
    const QByteArray text = file.readAll();
    const QList<QSslCertificate> certificates = QSslCertificate::fromData(text, QSsl::Pem);
    if (certificates.size() < qMax<qsizetype>(1, text.count("-----BEGIN CERTIFICATE-----"))) {
        qWarning() << "service.ini: invalid certificate in" << fileName;
        return;
    }
    QSslConfiguration configuration = QSslConfiguration::defaultConfiguration();
    configuration.setCaCertificates(trustedAuthorities(configuration) + certificates);
    QSslConfiguration::setDefaultConfiguration(configuration);
}

} // namespace

ServiceProfile ServiceProfile::fromFile(const QString &fileName)
{
    ServiceProfile profile;
    if (!QFile::exists(fileName))
        return profile;
    QSettings file(fileName, QSettings::IniFormat);
    useUtf8Ini(&file);
    if (file.status() != QSettings::NoError) {
        qWarning() << "service.ini: cannot read" << fileName;
        return profile;
    }
    const QStringList keys = file.allKeys();
    for (const QString &key : keys) {
        const QString value = wholeText(file.value(key));
        if (const auto text = textFields.value(key))
            profile.*text = value;
        else if (const auto port = portFields.value(key))
            readPort(value, key, &(profile.*port));
        else
            qWarning() << "service.ini: unknown key" << key;
    }
    return profile;
}

QUrl ServiceProfile::redirectorUrl(const QString &pathAndQuery) const
{
    return QUrl(QLatin1String("http://") + redirectorHost + pathAndQuery);
}

const ServiceProfile &ServiceProfile::current()
{
    return profileInForce();
}

void ServiceProfile::setCurrent(const ServiceProfile &profile)
{
    profileInForce() = profile;
    if (!profile.caCertificate.isEmpty())
        trustAuthorities(profile.caCertificate);
}

} // namespace App
} // namespace ZorvaneClient
