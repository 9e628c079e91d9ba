// SPDX-License-Identifier: MIT
#include "tests/support/ScriptedService.h"

#include "App/ServiceProfile.h"
#include "tests/support/TlsIdentity.h"

namespace ZorvaneClient {
namespace Tests {

namespace {

const TlsIdentity &serviceIdentity()
{
    static const TlsIdentity identity(QStringLiteral("scripted-service"));
    return identity;
}

} // namespace

ScriptedService::ScriptedService(QObject *parent) : QObject(parent)
{
    socketServer.setHandler([this](const WireRequest &request) {
        const QByteArray key = request.method() + ' ' + request.path();
        return replies.value(key,
                             WireReply::json(R"({"success":false,"response":{"code":10001}})"));
    });
}

bool ScriptedService::start()
{
    const TlsIdentity &identity = serviceIdentity();
    if (!identity.isValid() || !socketServer.start(&identity))
        return false;
    App::ServiceProfile profile;
    profile.apiHost = QStringLiteral("localhost");
    profile.apiPort = socketServer.port();
    profile.streamingHost = QStringLiteral("localhost");
    profile.streamingPort = socketServer.port();
    profile.caCertificate = identity.certificateFile();
    App::ServiceProfile::setCurrent(profile);
    return true;
}

void ScriptedService::succeed(const QByteArray &method, const QByteArray &path,
                              const QByteArray &response)
{
    answer(method, path, WireReply::json("{\"success\":true,\"response\":" + response + '}'));
}

void ScriptedService::reset()
{
    replies.clear();
    socketServer.clearRequests();
}

QList<WireRequest> ScriptedService::requestsTo(const QByteArray &path) const
{
    QList<WireRequest> found;
    const QList<WireRequest> all = requests();
    for (const WireRequest &request : all) {
        if (request.path() == path)
            found.append(request);
    }
    return found;
}

} // namespace Tests
} // namespace ZorvaneClient
