// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/LoopbackServer.h"
#include "tests/support/TlsIdentity.h"

namespace ZorvaneClient::Tests {

/// What goes back, byte by byte, and how the connection ends after it.
struct WireReply {
    enum class Ending { Close, Reset, KeepOpen };

    QByteArray bytes;
    Ending ending = Ending::Close;
    int dripBytes = 0; ///< how many bytes at a time; 0: all at once

    static WireReply raw(const QByteArray &bytes, Ending ending = Ending::Close)
    {
        return {bytes, ending};
    }
    /// A well-formed reply.
    static WireReply body(const QByteArray &body, const QByteArray &contentType, int status = 200)
    {
        return reply(status, "Content-Type: " + contentType, body);
    }
    static WireReply json(const QByteArray &body, int status = 200)
    {
        return WireReply::body(body, "application/json", status);
    }
    static WireReply redirect(const QByteArray &location, int status = 302)
    {
        return reply(status, "Location: " + location, QByteArray());
    }
    /// The request is read and never answered.
    static WireReply silence() { return raw(QByteArray(), Ending::KeepOpen); }

private:
    static WireReply reply(int status, const QByteArray &header, const QByteArray &body)
    {
        return raw("HTTP/1.1 " + QByteArray::number(status) + " Status\r\n" + header +
                   "\r\nContent-Length: " + QByteArray::number(body.size()) +
                   "\r\nConnection: close\r\n\r\n" + body);
    }
};

/// An HTTP server on loopback that answers exactly what the test tells it to, over plain TCP
/// or TLS.
class MisbehavingServer : public LoopbackServer
{
public:
    using Handler = std::function<WireReply(const WireRequest &)>;

    explicit MisbehavingServer(QObject *parent = nullptr) : LoopbackServer(parent)
    {
        setReply(WireReply::json("{}"));
    }

    /// Listens on a free port; with `identity` every connection speaks TLS.
    bool start(const TlsIdentity *identity = nullptr)
    {
        tls = identity;
        return open();
    }
    int port() const { return serverPort(); }
    /// "http://127.0.0.1:port" or "https://localhost:port".
    QByteArray origin() const
    {
        return (tls ? "https://localhost:" : "http://127.0.0.1:") + QByteArray::number(port());
    }

    void setHandler(Handler handler) { handle = std::move(handler); }
    /// The same reply to every request.
    void setReply(const WireReply &reply)
    {
        handle = [reply](const WireRequest &) { return reply; };
    }

    void clearRequests() { received.clear(); }
    int openConnections() const { return connections; }

protected:
    void incomingConnection(qintptr descriptor) override;

private:
    const TlsIdentity *tls = nullptr;
    Handler handle;
    int connections = 0;
};

} // namespace ZorvaneClient::Tests
