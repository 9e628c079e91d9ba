// SPDX-License-Identifier: MIT
#include "tests/support/MisbehavingServer.h"

#include <QSslSocket>
#include <QTcpSocket>
#include <QTimer>

#include <sys/socket.h>

#include "tests/support/TlsIdentity.h"

namespace ZorvaneClient {
namespace Tests {

namespace {

const QByteArray headEnd = QByteArrayLiteral("\r\n\r\n");

} // namespace

QByteArray WireRequest::header(const QByteArray &name) const
{
    const QList<QByteArray> lines = head.split('\n').mid(1);
    for (const QByteArray &line : lines) {
        const int colon = static_cast<int>(line.indexOf(':'));
        if (line.left(colon).toLower() == name.toLower())
            return line.mid(colon + 1).trimmed();
    }
    return QByteArray();
}

WireReply WireReply::raw(const QByteArray &bytes, Ending ending)
{
    WireReply reply;
    reply.bytes = bytes;
    reply.ending = ending;
    return reply;
}

WireReply WireReply::body(const QByteArray &body, const QByteArray &contentType, int status)
{
    return raw("HTTP/1.1 " + QByteArray::number(status) + " Status\r\nContent-Type: " +
               contentType + "\r\nContent-Length: " + QByteArray::number(body.size()) +
               "\r\nConnection: close\r\n\r\n" + body);
}

WireReply WireReply::json(const QByteArray &body, int status)
{
    return WireReply::body(body, "application/json", status);
}

WireReply WireReply::redirect(const QByteArray &location, int status)
{
    return raw("HTTP/1.1 " + QByteArray::number(status) + " Moved\r\nLocation: " + location +
               "\r\nContent-Length: 0\r\nConnection: close\r\n\r\n");
}

MisbehavingServer::MisbehavingServer(QObject *parent) : QTcpServer(parent)
{
    setReply(WireReply::json("{}"));
}

bool MisbehavingServer::start(const TlsIdentity *identity)
{
    tls = identity;
    return listen(QHostAddress::LocalHost);
}

QByteArray MisbehavingServer::origin() const
{
    return (tls ? QByteArray("https://localhost:") : QByteArray("http://127.0.0.1:")) +
           QByteArray::number(port());
}

void MisbehavingServer::setReply(const WireReply &reply)
{
    handle = [reply](const WireRequest &) { return reply; };
}

int MisbehavingServer::deadPort()
{
    QTcpServer probe;
    probe.listen(QHostAddress::LocalHost);
    return probe.serverPort();
}

void MisbehavingServer::incomingConnection(qintptr descriptor)
{
    QTcpSocket *socket = nullptr;
    if (tls) {
        auto *secure = new QSslSocket(this);
        secure->setLocalCertificate(tls->certificate());
        secure->setPrivateKey(tls->privateKey());
        secure->setSocketDescriptor(descriptor);
        secure->startServerEncryption();
        socket = secure;
    } else {
        socket = new QTcpSocket(this);
        socket->setSocketDescriptor(descriptor);
    }
    ++connections;
    connect(socket, &QTcpSocket::readyRead, this, [this, socket] { readRequest(socket); });
    connect(socket, &QTcpSocket::disconnected, this, [this, socket] {
        --connections;
        socket->deleteLater();
    });
}

void MisbehavingServer::readRequest(QTcpSocket *socket)
{
    const QByteArray pending = socket->peek(socket->bytesAvailable());
    const auto headSize = pending.indexOf(headEnd);
    if (headSize < 0)
        return;
    WireRequest request;
    request.head = pending.left(headSize);
    const int bodySize = request.header("Content-Length").toInt();
    const auto fullSize = headSize + headEnd.size() + bodySize;
    if (pending.size() < fullSize)
        return;
    request.body = socket->read(fullSize).mid(headSize + headEnd.size());
    received.append(request);
    const WireReply reply = handle(request);
    answer(socket, reply);
}

void MisbehavingServer::answer(QTcpSocket *socket, const WireReply &reply)
{
    const int count = reply.dripBytes > 0 ? reply.dripBytes : static_cast<int>(reply.bytes.size());
    socket->write(reply.bytes.left(count));
    WireReply rest = reply;
    rest.bytes = reply.bytes.mid(count);
    if (rest.bytes.isEmpty()) {
        end(socket, rest.ending);
        return;
    }
    socket->flush();
    QTimer::singleShot(1, socket, [this, socket, rest] { answer(socket, rest); });
}

void MisbehavingServer::end(QTcpSocket *socket, WireReply::Ending ending)
{
    switch (ending) {
    case WireReply::Ending::Close:
        socket->disconnectFromHost();
        break;
    case WireReply::Ending::Reset: {
        socket->waitForBytesWritten();
        const linger atOnce{1, 0};
        setsockopt(static_cast<int>(socket->socketDescriptor()), SOL_SOCKET, SO_LINGER, &atOnce,
                   sizeof atOnce);
        socket->abort();
        break;
    }
    case WireReply::Ending::KeepOpen:
        socket->flush();
        break;
    }
}

} // namespace Tests
} // namespace ZorvaneClient
