// SPDX-License-Identifier: MIT
#include "tests/support/StreamServer.h"

namespace ZorvaneClient::Tests {

/// Reads the request and serves its script.
class StreamServer::Connection : public QTcpSocket
{
public:
    Connection(qintptr descriptor, StreamServer *server) : QTcpSocket(server), owner(server)
    {
        setSocketDescriptor(descriptor);
        setSocketOption(QAbstractSocket::LowDelayOption, 1);
        pace.setTimerType(Qt::PreciseTimer);
        connect(this, &QTcpSocket::readyRead, this, &Connection::answer);
        connect(this, &QTcpSocket::disconnected, this, &QObject::deleteLater);
        connect(this, &QTcpSocket::bytesWritten, this, [this](qint64 bytes) {
            owner->taken += bytes;
            sendDue();
        });
        connect(&pace, &QTimer::timeout, this, &Connection::sendDue);
    }
    ~Connection() override { disconnect(); }

private:
    void answer()
    {
        if (answered || !owner->takeRequest(this))
            return;
        answered = true;
        const WireRequest &request = owner->received.last();
        // What a proxy is asked for is a whole URL.
        const QByteArray target = request.path();
        const auto host = target.startsWith("http://") ? target.indexOf('/', 7) : 0;
        script = owner->scripts.value(target.mid(host), owner->scripts.value(QByteArray()));
        QByteArray more;
        if (!owner->authorization.isEmpty() &&
            request.header("Proxy-Authorization") != owner->authorization) {
            script = StreamScript();
            script.status = 407;
            script.contentLength = 0;
            more = "Proxy-Authenticate: Basic realm=\"test\"\r\n";
        }
        if (!script.location.isEmpty())
            more += "Location: " + script.location + "\r\n";
        if (script.contentLength >= 0)
            more += "Content-Length: " + QByteArray::number(script.contentLength) + "\r\n";
        if (script.chunked)
            more += "Transfer-Encoding: chunked\r\n";
        write("HTTP/1.1 " + QByteArray::number(script.status) + " Reply\r\n" + more +
              "Content-Type: video/x-flv\r\nConnection: close\r\n\r\n");
        if (script.status != 200)
            return disconnectFromHost();
        if (script.raw.isEmpty())
            writePart(script.clip.header);
        started.start();
        pace.start(5);
        sendDue();
    }

    void sendDue()
    {
        if (!pace.isActive() || state() != QAbstractSocket::ConnectedState)
            return;
        if (!(script.raw.isEmpty() ? sendTags() : sendRaw()))
            return;
        pace.stop();
        if (script.ending == StreamScript::Ending::Close) {
            if (script.chunked)
                write("0\r\n\r\n");
            disconnectFromHost();
        } else if (script.ending == StreamScript::Ending::Reset) {
            sendReset(this);
        }
    }

    /// True when all is sent; like sendTags().
    bool sendRaw()
    {
        const int size = int(script.raw.size());
        const qint64 allowed = started.elapsed() * script.rawBytesPerSecond / 1000;
        const int end = script.rawBytesPerSecond > 0 ? int(qMin<qint64>(allowed, size)) : size;
        while (rawSent < end && bytesToWrite() < maxWaitingBytes)
            rawSent += int(write(script.raw.mid(rawSent, qMin(end - rawSent, 16 * 1024))));
        return rawSent >= size;
    }

    bool sendTags()
    {
        for (; nextTag < script.clip.tags.size() && bytesToWrite() < maxWaitingBytes; ++nextTag) {
            const FlvTag &tag = script.clip.tags.at(nextTag);
            if (script.stopAt >= 0 && tag.milliseconds >= script.stopAt)
                return true;
            if (!isDue(tag))
                return false;
            writePart(tag.bytes);
            owner->sent = qMax(owner->sent, tag.milliseconds);
        }
        return nextTag == script.clip.tags.size();
    }

    void writePart(const QByteArray &bytes)
    {
        if (script.chunked)
            write(QByteArray::number(bytes.size(), 16) + "\r\n" + bytes + "\r\n");
        else
            write(bytes);
    }

    bool isDue(const FlvTag &tag) const
    {
        if (script.speed <= 0 || tag.milliseconds <= script.burst)
            return true;
        int due = tag.milliseconds - script.burst;
        if (script.bundle > 0)
            due += script.bundle - due % script.bundle;
        return due <= started.elapsed() * script.speed;
    }

    /// More isn't kept in this process: the rest waits until the client has read.
    static constexpr qint64 maxWaitingBytes = 64 * 1024;

    StreamServer *const owner;
    StreamScript script;
    bool answered = false;
    int nextTag = 0;
    int rawSent = 0;
    QElapsedTimer started;
    QTimer pace;
};

void StreamServer::incomingConnection(qintptr descriptor)
{
    new Connection(descriptor, this);
}

} // namespace ZorvaneClient::Tests
