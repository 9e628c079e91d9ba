// SPDX-License-Identifier: MIT
#include "tests/support/StreamServer.h"

#include "tests/support/StreamConnection.h"

namespace ZorvaneClient {
namespace Tests {

StreamScript StreamScript::of(const FlvClip &clip, double speed)
{
    StreamScript script;
    script.clip = clip;
    script.speed = speed;
    return script;
}

StreamServer::StreamServer(QObject *parent) : QTcpServer(parent)
{
}

/// Connections count themselves off, so they go while the counter is there.
StreamServer::~StreamServer()
{
    qDeleteAll(findChildren<StreamConnection *>(QString(), Qt::FindDirectChildrenOnly));
}

bool StreamServer::start()
{
    return listen(QHostAddress::LocalHost);
}

bool StreamServer::start(const StreamScript &script)
{
    setScript(script);
    return start();
}

QByteArray StreamServer::url(const QByteArray &path) const
{
    return "http://127.0.0.1:" + QByteArray::number(serverPort()) + path;
}

void StreamServer::setScript(const StreamScript &script, const QByteArray &path)
{
    scripts.insert(path, script);
}

void StreamServer::requireProxyAuthorization(const QByteArray &user, const QByteArray &password)
{
    proxyCredentials = (user + ":" + password).toBase64();
}

int StreamServer::deadPort()
{
    QTcpServer server;
    server.listen(QHostAddress::LocalHost);
    return server.serverPort();
}

void StreamServer::incomingConnection(qintptr descriptor)
{
    new StreamConnection(descriptor, this);
}

StreamScript StreamServer::scriptFor(const QByteArray &head) const
{
    QByteArray target = head.split(' ').value(1);
    if (target.startsWith("http://"))
        target.remove(0, static_cast<int>(target.indexOf('/', 7)));
    const QByteArray path = target.split('?').first();
    return scripts.value(path, scripts.value(QByteArray()));
}

bool StreamServer::isAuthorized(const QByteArray &head) const
{
    return proxyCredentials.isEmpty() ||
           head.contains("Proxy-Authorization: Basic " + proxyCredentials);
}

} // namespace Tests
} // namespace ZorvaneClient
