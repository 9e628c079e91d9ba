// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/FlvClip.h"
#include "tests/support/LoopbackServer.h"

namespace ZorvaneClient::Tests {

/// How a stream is served.
struct StreamScript {
    enum class Ending { Close, Reset, Stall };

    static StreamScript of(const FlvClip &clip, double speed = 1)
    {
        StreamScript script;
        script.clip = clip;
        script.speed = speed;
        return script;
    }

    FlvClip clip;
    double speed = 1; ///< of the clip's own time; 0: as fast as the client reads
    int burst = 0;    ///< milliseconds of the clip that go out at once
    int bundle = 0;   ///< milliseconds of the clip that are held and then sent together
    int stopAt = -1;  ///< the clip's time at which `ending` comes; -1: at its end
    Ending ending = Ending::Close;

    QByteArray raw;            ///< if set, sent at once in place of the clip
    int rawBytesPerSecond = 0; ///< 0: no limit

    bool chunked = false; ///< the clip goes out in chunks of the transfer coding, one a tag

    int status = 200;
    QByteArray location; ///< of a redirect
    qint64 contentLength = -1;
};

/// A streaming server on loopback, which is also a proxy: it answers whatever host it is asked
/// for. Paces the clip in the event loop of the test.
class StreamServer : public LoopbackServer
{
public:
    bool start() { return open(); }
    /// With `script` for every request.
    bool start(const StreamScript &script)
    {
        setScript(script);
        return open();
    }
    /// "http://127.0.0.1:port" and the path.
    QByteArray url(const QByteArray &path) const
    {
        return "http://127.0.0.1:" + QByteArray::number(serverPort()) + path;
    }

    /// The script of every later request; for one path only, if that is given.
    void setScript(const StreamScript &script, const QByteArray &path = QByteArray())
    {
        scripts.insert(path, script);
    }
    /// From now on a request without this user and password gets 407.
    void requireProxyAuthorization(const QByteArray &user, const QByteArray &password)
    {
        authorization = "Basic " + (user + ":" + password).toBase64();
    }

    /// Request line and header lines of each request.
    QList<QByteArray> heads() const
    {
        QList<QByteArray> heads;
        for (const WireRequest &request : received)
            heads << request.head;
        return heads;
    }
    /// Time of the newest part of the clip that was handed to a connection.
    int sentMilliseconds() const { return sent; }
    /// Bytes that the system has taken from this server.
    qint64 takenBytes() const { return taken; }

protected:
    void incomingConnection(qintptr descriptor) override;

private:
    class Connection;

    QHash<QByteArray, StreamScript> scripts;
    QByteArray authorization;
    int sent = 0;
    qint64 taken = 0;
};

} // namespace ZorvaneClient::Tests
