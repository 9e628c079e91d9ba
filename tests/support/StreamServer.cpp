// SPDX-License-Identifier: MIT
#include "tests/support/StreamServer.h"

#include <QElapsedTimer>
#include <QTcpSocket>
#include <QTimer>

#include <sys/socket.h>

namespace ZorvaneClient {
namespace Tests {

namespace {

constexpr int paceMilliseconds = 5;
/// More isn't kept in this process: the rest waits until the client has read.
constexpr qint64 maxWaitingBytes = 64 * 1024;
constexpr int rawChunkBytes = 16 * 1024;

} // namespace

/// One connection of a `StreamServer`: reads the request and serves its script.
class StreamConnection : public QTcpSocket
{
    Q_DISABLE_COPY(StreamConnection)

public:
    StreamConnection(qintptr descriptor, StreamServer *server);
    ~StreamConnection() override { disconnect(); }

private:
    void readRequest();
    void answer();
    QByteArray replyHead() const;
    void sendDue();
    void sendRaw();
    void sendTags();
    void writePart(const QByteArray &bytes);
    bool isDue(const FlvTag &tag) const;
    void end();

    StreamServer *const owner;
    StreamScript script;
    QByteArray head;
    bool answered = false;
    bool ended = false;
    int nextTag = 0;
    int rawSent = 0;
    QElapsedTimer started;
    QTimer pace;
};

StreamConnection::StreamConnection(qintptr descriptor, StreamServer *server)
    : QTcpSocket(server), owner(server)
{
    setSocketDescriptor(descriptor);
    setSocketOption(QAbstractSocket::LowDelayOption, 1);
    pace.setTimerType(Qt::PreciseTimer);
    connect(this, &QTcpSocket::readyRead, this, &StreamConnection::readRequest);
    connect(this, &QTcpSocket::disconnected, this, &QObject::deleteLater);
    connect(this, &QTcpSocket::bytesWritten, this, [this](qint64 bytes) {
        owner->taken += bytes;
        sendDue();
    });
    connect(&pace, &QTimer::timeout, this, &StreamConnection::sendDue);
}

void StreamConnection::readRequest()
{
    head += readAll();
    const int end = static_cast<int>(head.indexOf("\r\n\r\n"));
    if (end < 0 || answered)
        return;
    answered = true;
    head.truncate(end);
    owner->receivedHeads.append(head);
    script = owner->scriptFor(head);
    answer();
}

void StreamConnection::answer()
{
    if (!owner->isAuthorized(head)) {
        write("HTTP/1.1 407 Proxy Authentication Required\r\n"
              "Proxy-Authenticate: Basic realm=\"test\"\r\n"
              "Content-Length: 0\r\nConnection: close\r\n\r\n");
        disconnectFromHost();
        return;
    }
    write(replyHead());
    if (script.status != 200) {
        disconnectFromHost();
        return;
    }
    if (script.raw.isEmpty())
        writePart(script.clip.header);
    started.start();
    pace.start(paceMilliseconds);
    sendDue();
}

QByteArray StreamConnection::replyHead() const
{
    QByteArray reply = "HTTP/1.1 " + QByteArray::number(script.status) + " Reply\r\n";
    if (!script.location.isEmpty())
        reply += "Location: " + script.location + "\r\n";
    if (script.contentLength >= 0)
        reply += "Content-Length: " + QByteArray::number(script.contentLength) + "\r\n";
    if (script.chunked)
        reply += "Transfer-Encoding: chunked\r\n";
    return reply + "Content-Type: video/x-flv\r\nConnection: close\r\n\r\n";
}

void StreamConnection::sendDue()
{
    if (ended || !started.isValid() || state() != QAbstractSocket::ConnectedState)
        return;
    if (script.raw.isEmpty())
        sendTags();
    else
        sendRaw();
}

void StreamConnection::sendRaw()
{
    const qint64 allowed = script.rawBytesPerSecond > 0
                               ? started.elapsed() * script.rawBytesPerSecond / 1000
                               : script.raw.size();
    while (rawSent < allowed && rawSent < script.raw.size() && bytesToWrite() < maxWaitingBytes) {
        const int left = static_cast<int>(qMin<qint64>(allowed, script.raw.size())) - rawSent;
        rawSent += static_cast<int>(write(script.raw.mid(rawSent, qMin(left, rawChunkBytes))));
    }
    if (rawSent >= script.raw.size())
        end();
}

void StreamConnection::sendTags()
{
    while (nextTag < script.clip.tags.size() && bytesToWrite() < maxWaitingBytes) {
        const FlvTag &tag = script.clip.tags.at(nextTag);
        if (script.stopAt >= 0 && tag.milliseconds >= script.stopAt) {
            end();
            return;
        }
        if (!isDue(tag))
            return;
        writePart(tag.bytes);
        owner->sent = qMax(owner->sent, tag.milliseconds);
        ++nextTag;
    }
    if (nextTag == script.clip.tags.size())
        end();
}

void StreamConnection::writePart(const QByteArray &bytes)
{
    if (script.chunked)
        write(QByteArray::number(bytes.size(), 16) + "\r\n" + bytes + "\r\n");
    else
        write(bytes);
}

bool StreamConnection::isDue(const FlvTag &tag) const
{
    if (script.speed <= 0 || tag.milliseconds <= script.burst)
        return true;
    int due = tag.milliseconds - script.burst;
    if (script.bundle > 0)
        due += script.bundle - due % script.bundle;
    return due <= started.elapsed() * script.speed;
}

void StreamConnection::end()
{
    ended = true;
    pace.stop();
    if (script.ending == StreamScript::Ending::Close) {
        if (script.chunked)
            write("0\r\n\r\n");
        disconnectFromHost();
    } else if (script.ending == StreamScript::Ending::Reset) {
        waitForBytesWritten();
        const linger hard = {1, 0};
        setsockopt(static_cast<int>(socketDescriptor()), SOL_SOCKET, SO_LINGER, &hard, sizeof hard);
        abort();
        deleteLater();
    }
}

StreamScript StreamScript::of(const FlvClip &clip, double speed)
{
    StreamScript script;
    script.clip = clip;
    script.speed = speed;
    return script;
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
