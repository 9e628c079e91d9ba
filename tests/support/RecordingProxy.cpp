// SPDX-License-Identifier: MIT
#include "tests/support/RecordingProxy.h"

#include <QTcpSocket>

namespace ZorvaneClient {
namespace Tests {

namespace {

const QByteArray headEnd = QByteArrayLiteral("\r\n\r\n");

void pass(QTcpSocket *from, QTcpSocket *to)
{
    to->write(from->readAll());
}

} // namespace

RecordingProxy::RecordingProxy(QObject *parent) : QTcpServer(parent)
{
}

bool RecordingProxy::start()
{
    return listen(QHostAddress::LocalHost);
}

int RecordingProxy::port() const
{
    return serverPort();
}

void RecordingProxy::requireAuthentication(const QByteArray &user, const QByteArray &password)
{
    credentials = "Basic " + (user + ':' + password).toBase64();
}

QList<QByteArray> RecordingProxy::heads() const
{
    return receivedHeads;
}

int RecordingProxy::tunnels() const
{
    return tunnelCount;
}

void RecordingProxy::incomingConnection(qintptr descriptor)
{
    auto *client = new QTcpSocket(this);
    client->setSocketDescriptor(descriptor);
    connect(client, &QTcpSocket::readyRead, this, [this, client] { readHead(client); });
    connect(client, &QTcpSocket::disconnected, client, &QObject::deleteLater);
}

void RecordingProxy::readHead(QTcpSocket *client)
{
    const QByteArray pending = client->peek(client->bytesAvailable());
    const auto size = pending.indexOf(headEnd);
    if (size < 0)
        return;
    const QByteArray head = client->read(size + headEnd.size()).left(size);
    receivedHeads.append(head);
    if (!credentials.isEmpty() && !head.contains(credentials)) {
        client->write("HTTP/1.1 407 Proxy Authentication Required\r\n"
                      "Proxy-Authenticate: Basic realm=\"proxy\"\r\n"
                      "Content-Length: 0\r\n\r\n");
        return;
    }
    const QList<QByteArray> words = head.left(head.indexOf('\r')).split(' ');
    if (words.value(0) == "CONNECT") {
        openTunnel(client, words.value(1));
        return;
    }
    client->write("HTTP/1.1 403 Forbidden\r\nContent-Length: 0\r\nConnection: close\r\n\r\n");
    client->disconnectFromHost();
}

void RecordingProxy::openTunnel(QTcpSocket *client, const QByteArray &address)
{
    ++tunnelCount;
    const auto colon = address.lastIndexOf(':');
    auto *target = new QTcpSocket(client);
    client->disconnect(this);
    connect(client, &QTcpSocket::readyRead, target, [client, target] { pass(client, target); });
    connect(target, &QTcpSocket::readyRead, client, [client, target] { pass(target, client); });
    connect(target, &QTcpSocket::connected, client,
            [client] { client->write("HTTP/1.1 200 Connection established\r\n\r\n"); });
    connect(target, &QTcpSocket::disconnected, client, [client, target] {
        pass(target, client);
        client->disconnectFromHost();
    });
    target->connectToHost(QString::fromLatin1(address.left(colon)),
                          address.mid(colon + 1).toUShort());
}

} // namespace Tests
} // namespace ZorvaneClient
