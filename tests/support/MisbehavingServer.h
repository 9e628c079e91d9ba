// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QList>
#include <QTcpServer>

#include <functional>

class QTcpSocket;

namespace ZorvaneClient {
namespace Tests {

class TlsIdentity;

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
    QByteArray header(const QByteArray &name) const;
};

/// What goes back, byte by byte, and how the connection ends after it.
struct WireReply {
    enum class Ending { Close, Reset, KeepOpen };

    QByteArray bytes;
    Ending ending = Ending::Close;
    int dripBytes = 0; ///< how many bytes at a time; 0: all at once

    static WireReply raw(const QByteArray &bytes, Ending ending = Ending::Close);
    /// A well-formed reply.
    static WireReply body(const QByteArray &body, const QByteArray &contentType, int status = 200);
    static WireReply json(const QByteArray &body, int status = 200);
    static WireReply redirect(const QByteArray &location, int status = 302);
    /// The request is read and never answered.
    static WireReply silence() { return raw(QByteArray(), Ending::KeepOpen); }
};

/// An HTTP server on loopback that answers exactly what the test tells it to, over plain TCP
/// or TLS, and keeps every request.
class MisbehavingServer : public QTcpServer
{
    Q_OBJECT
    Q_DISABLE_COPY(MisbehavingServer)

public:
    using Handler = std::function<WireReply(const WireRequest &)>;

    explicit MisbehavingServer(QObject *parent = nullptr);

    /// Listens on a free port; with `identity` every connection speaks TLS.
    bool start(const TlsIdentity *identity = nullptr);
    int port() const { return serverPort(); }
    /// "http://127.0.0.1:port" or "https://localhost:port".
    QByteArray origin() const;

    void setHandler(Handler handler) { handle = std::move(handler); }
    /// The same reply to every request.
    void setReply(const WireReply &reply);

    QList<WireRequest> requests() const { return received; }
    void clearRequests() { received.clear(); }
    int openConnections() const { return connections; }

    /// A port of loopback that nobody listens on.
    static int deadPort();

protected:
    void incomingConnection(qintptr descriptor) override;

private:
    void readRequest(QTcpSocket *socket);
    void answer(QTcpSocket *socket, const WireReply &reply);
    void end(QTcpSocket *socket, WireReply::Ending ending);

    const TlsIdentity *tls = nullptr;
    Handler handle;
    QList<WireRequest> received;
    int connections = 0;
};

} // namespace Tests
} // namespace ZorvaneClient
