// SPDX-License-Identifier: MIT
#pragma once

#include <QHash>
#include <QObject>

#include "tests/support/MisbehavingServer.h"

namespace ZorvaneClient {
namespace Tests {

/// The service's API and streaming hosts in one server over real TLS, with a reply for each
/// method and path. Puts itself in force as the service of this process.
class ScriptedService : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(ScriptedService)

public:
    explicit ScriptedService(QObject *parent = nullptr);

    /// False when there is no certificate or no port.
    bool start();

    /// Until this is said, every request is answered with a failure, code 10001.
    void answer(const QByteArray &method, const QByteArray &path, const WireReply &reply)
    {
        replies.insert(method + ' ' + path, reply);
    }
    /// A successful envelope round `response`.
    void succeed(const QByteArray &method, const QByteArray &path, const QByteArray &response);
    /// Forgets replies and requests.
    void reset();

    QList<WireRequest> requests() const { return socketServer.requests(); }
    /// Requests to `path` only.
    QList<WireRequest> requestsTo(const QByteArray &path) const;
    MisbehavingServer &server() { return socketServer; }

private:
    MisbehavingServer socketServer;
    QHash<QByteArray, WireReply> replies;
};

} // namespace Tests
} // namespace ZorvaneClient
