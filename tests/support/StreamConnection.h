// SPDX-License-Identifier: MIT
#pragma once

#include <QElapsedTimer>
#include <QTcpSocket>
#include <QTimer>

#include "tests/support/StreamServer.h"

namespace ZorvaneClient {
namespace Tests {

/// One connection of a `StreamServer`: reads the request and serves its script.
class StreamConnection : public QTcpSocket
{
    Q_OBJECT
    Q_DISABLE_COPY(StreamConnection)

public:
    StreamConnection(qintptr descriptor, StreamServer *server);
    ~StreamConnection() override;

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

} // namespace Tests
} // namespace ZorvaneClient
