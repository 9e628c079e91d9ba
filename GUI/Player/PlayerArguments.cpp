// SPDX-License-Identifier: MIT
#include "GUI/Player/PlayerArguments.h"

namespace ZorvaneClient {
namespace GUI {
namespace Player {
namespace Internal {

namespace {

QString proxyAddress(const App::ProxySettings &proxy)
{
    const QString port = QString::number(proxy.port);
    if (proxy.userName.isEmpty())
        return QStringLiteral(":http-proxy=http://%1:%2/").arg(proxy.host, port);
    return QStringLiteral(":http-proxy=http://%1@%2:%3/").arg(proxy.userName, proxy.host, port);
}

} // namespace

QStringList playerArguments(const QString &url, const QString &frameFileName,
                            const App::ProxySettings &proxy)
{
    QStringList arguments{url, frameFileName};
    if (!proxy.isOn || proxy.host.isEmpty())
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
