// SPDX-License-Identifier: MIT
#include "tests/support/MisbehavingServer.h"

namespace ZorvaneClient::Tests {

void MisbehavingServer::incomingConnection(qintptr descriptor)
{
    auto *socket = new QSslSocket(this);
    socket->setSocketDescriptor(descriptor);
    if (tls) {
        socket->setLocalCertificate(tls->certificate());
        socket->setPrivateKey(tls->privateKey());
        socket->startServerEncryption();
    }
    // What is left of the reply goes out a part at a time.
    auto *drip = new QTimer(socket);
    const auto reply = std::make_shared<WireReply>();
    const auto answer = [this, socket, drip, reply] {
        const int count = reply->dripBytes > 0 ? reply->dripBytes : int(reply->bytes.size());
        socket->write(reply->bytes.left(count));
        socket->flush();
        reply->bytes.remove(0, count);
        if (!reply->bytes.isEmpty())
            return drip->start(1);
        drip->stop();
        if (reply->ending == WireReply::Ending::Close)
            socket->disconnectFromHost();
        else if (reply->ending == WireReply::Ending::Reset)
            sendReset(socket);
    };
    connect(drip, &QTimer::timeout, socket, answer);
    connect(socket, &QTcpSocket::readyRead, this, [this, socket, reply, answer] {
        if (!takeRequest(socket))
            return;
        *reply = handle(WireRequest(received.last()));
        answer();
    });
    ++connections;
    connect(socket, &QTcpSocket::disconnected, this, [this, socket] {
        --connections;
        socket->deleteLater();
    });
}

} // namespace ZorvaneClient::Tests
