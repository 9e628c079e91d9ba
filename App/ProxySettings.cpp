// SPDX-License-Identifier: MIT
#include "App/ProxySettings.h"

#include "App/Settings.h"
#include "App/SettingsKeys.h"

namespace ZorvaneClient {
namespace App {

ProxySettings ProxySettings::load()
{
    const Settings &file = settings();
    ProxySettings proxy;
    proxy.isOn = file.value(SettingsKey::useProxy, false).toBool();
    proxy.host = file.value(SettingsKey::proxyHost).toString();
    proxy.port = file.value(SettingsKey::proxyPort).toInt();
    proxy.userName = file.value(SettingsKey::proxyUserName).toString();
    proxy.password = file.value(SettingsKey::proxyPassword).toString();
    return proxy;
}

void ProxySettings::save() const
{
    Settings &file = settings();
    file.setValue(SettingsKey::useProxy, isOn);
    if (!isOn)
        return;
    file.setValue(SettingsKey::proxyHost, host);
    file.setValue(SettingsKey::proxyPort, port);
    file.setValue(SettingsKey::proxyUserName, userName);
    file.setValue(SettingsKey::proxyPassword, password);
}

} // namespace App
} // namespace ZorvaneClient
