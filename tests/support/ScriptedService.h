// SPDX-License-Identifier: MIT
#pragma once

#include "App/ServiceProfile.h"
#include "tests/support/MisbehavingServer.h"

namespace ZorvaneClient::Tests {

/// The service's API and streaming hosts in one server over real TLS, with a reply for each
/// method and path. Puts itself in force as the service of this process.
class ScriptedService : public QObject
{
public:
    explicit ScriptedService(QObject *parent = nullptr) : QObject(parent)
    {
        socketServer.setHandler([this](const WireRequest &request) {
            const auto failure = R"({"success":false,"response":{"code":10001}})";
            return replies.value(request.method() + ' ' + request.path(), WireReply::json(failure));
        });
    }

    /// False when there is no certificate or no port.
    bool start()
    {
        static const TlsIdentity identity("scripted-service");
        if (!identity.isValid() || !socketServer.start(&identity))
            return false;
        App::ServiceProfile profile;
        profile.apiHost = profile.streamingHost = "localhost";
        profile.apiPort = profile.streamingPort = socketServer.port();
        profile.caCertificate = identity.certificateFile();
        App::ServiceProfile::setCurrent(profile);
        return true;
    }

    /// Until this is said, every request is answered with a failure, code 10001.
    void answer(const QByteArray &method, const QByteArray &path, const WireReply &reply)
    {
        replies.insert(method + ' ' + path, reply);
    }
    /// A successful envelope round `response`.
    void succeed(const QByteArray &method, const QByteArray &path, const QByteArray &response)
    {
        answer(method, path, WireReply::json("{\"success\":true,\"response\":" + response + '}'));
    }
    /// Forgets replies and requests.
    void reset()
    {
        replies.clear();
        socketServer.clearRequests();
    }

    QList<WireRequest> requests() const { return socketServer.requests(); }
    /// Requests to `path` only.
    QList<WireRequest> requestsTo(const QByteArray &path) const
    {
        QList<WireRequest> found;
        const auto isOther = [&](const WireRequest &request) { return request.path() != path; };
        const QList<WireRequest> all = requests();
        std::remove_copy_if(all.begin(), all.end(), std::back_inserter(found), isOther);
        return found;
    }
    MisbehavingServer &server() { return socketServer; }

private:
    MisbehavingServer socketServer;
    QHash<QByteArray, WireReply> replies;
};

} // namespace ZorvaneClient::Tests
