// SPDX-License-Identifier: MIT
#pragma once

#include <sys/socket.h>

#include "tests/support/Test.h"

namespace ZorvaneClient::Tests {

/// A request as it stood on the wire.
struct WireRequest {
    QByteArray head; ///< request line and header lines, without the empty line
    QByteArray body;

    QByteArray requestLine() const { return head.left(head.indexOf("\r\n")); }
    QByteArray method() const { return requestLine().split(' ').value(0); }
    /// Path and query.
    QByteArray target() const { return requestLine().split(' ').value(1); }
    QByteArray path() const { return target().split('?').value(0); }
    /// Value of the first header of that name in any case; empty without one.
    QByteArray header(const QByteArray &name) const
    {
        const QList<QByteArray> lines = head.split('\n').mid(1);
        for (const QByteArray &line : lines) {
            if (line.split(':').first().toLower() == name.toLower())
                return line.mid(name.size() + 1).trimmed();
        }
        return QByteArray();
    }
};

/// What servers of HTTP on loopback have in common. Keeps every request.
class LoopbackServer : public QTcpServer
{
public:
    using QTcpServer::QTcpServer;

    QList<WireRequest> requests() const { return received; }

    /// A port of loopback that nobody listens on.
    static int deadPort()
    {
        LoopbackServer probe;
        probe.open();
        return probe.serverPort();
    }

protected:
    bool open() { return listen(QHostAddress::LocalHost); }

    /// False as long as the next request is not here as a whole; then it is the last one kept.
    bool takeRequest(QTcpSocket *socket)
    {
        const QByteArray pending = socket->peek(socket->bytesAvailable());
        const auto headSize = pending.indexOf("\r\n\r\n");
        WireRequest request{pending.left(headSize), {}};
        const auto bodyStart = headSize + 4;
        const auto size = bodyStart + request.header("Content-Length").toInt();
        if (headSize < 0 || pending.size() < size)
            return false;
        request.body = socket->read(size).mid(bodyStart);
        received.append(request);
        return true;
    }

    /// Ends the connection by RST, after what was written to it.
    static void sendReset(QTcpSocket *socket)
    {
        socket->waitForBytesWritten();
        const linger atOnce{1, 0};
        setsockopt(static_cast<int>(socket->socketDescriptor()), SOL_SOCKET, SO_LINGER, &atOnce,
                   sizeof atOnce);
        socket->abort();
    }

    QList<WireRequest> received;
};

} // namespace ZorvaneClient::Tests
