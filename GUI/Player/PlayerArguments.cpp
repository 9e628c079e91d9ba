// SPDX-License-Identifier: MIT
#include "GUI/Player/PlayerArguments.h"

#include "App/Settings.h"

namespace ZorvaneClient {
namespace GUI {
namespace Player {
namespace Internal {

namespace {

QString proxyAddress(const PlayerProxy &proxy)
{
    const QString port = QString::number(proxy.port);
    if (proxy.userName.isEmpty())
        return QStringLiteral(":http-proxy=http://%1:%2/").arg(proxy.host, port);
    return QStringLiteral(":http-proxy=http://%1@%2:%3/").arg(proxy.userName, proxy.host, port);
}

} // namespace

PlayerProxy PlayerProxy::fromSettings()
{
    const App::Settings &settings = App::settings();
    PlayerProxy proxy;
    if (!settings.value(QStringLiteral("proxy/useProxy"), false).toBool())
        return proxy;
    proxy.host = settings.value(QStringLiteral("proxy/host")).toString();
    proxy.port = settings.value(QStringLiteral("proxy/port")).toInt();
    proxy.userName = settings.value(QStringLiteral("proxy/username")).toString();
    proxy.password = settings.value(QStringLiteral("proxy/password")).toString();
    return proxy;
}

QStringList playerArguments(const QString &url, const QString &frameFileName,
                            const PlayerProxy &proxy)
{
    QStringList arguments{url, frameFileName};
    if (proxy.host.isEmpty())
        return arguments;
    arguments << proxyAddress(proxy);
    if (!proxy.password.isEmpty())
        arguments << QLatin1String(":http-proxy-pwd=") + proxy.password;
    return arguments;
}

} // namespace Internal
} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
