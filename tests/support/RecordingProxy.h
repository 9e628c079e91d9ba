// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QList>
#include <QTcpServer>

class QTcpSocket;

namespace ZorvaneClient {
namespace Tests {

/// An HTTP proxy on loopback that keeps the head of everything it is asked for. It tunnels
/// CONNECT and refuses all else.
class RecordingProxy : public QTcpServer
{
    Q_OBJECT
    Q_DISABLE_COPY(RecordingProxy)

public:
    explicit RecordingProxy(QObject *parent = nullptr);

    bool start();
    int port() const;
    /// From now on a request without this user and password is turned away.
    void requireAuthentication(const QByteArray &user, const QByteArray &password);

    /// Request line and header lines of each request.
    QList<QByteArray> heads() const;
    int tunnels() const;

protected:
    void incomingConnection(qintptr descriptor) override;

private:
    void readHead(QTcpSocket *client);
    void openTunnel(QTcpSocket *client, const QByteArray &address);

    QByteArray credentials;
    QList<QByteArray> receivedHeads;
    int tunnelCount = 0;
};

} // namespace Tests
} // namespace ZorvaneClient
