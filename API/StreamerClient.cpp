// SPDX-License-Identifier: MIT
#include "API/StreamerClient.h"

#include "App/ServiceProfile.h"

namespace ZorvaneClient {
namespace API {

namespace {

// No common prefix: the path of a command at the service begins with two slashes, as it
// expects, and that at a LAN server with one.
const QString streamingPathPrefix;

} // namespace

StreamerClient::StreamerClient()
    : http(App::ServiceProfile::current().streamingHost,
           App::ServiceProfile::current().streamingPort, true, true)
    , basePath(QLatin1Char('/') + streamingPathPrefix)
{
    connect(&http, &HTTPClient::finished, this, &StreamerClient::responseReceived);
    connect(&http, &HTTPClient::error, this, &StreamerClient::error);
}

StreamerClient::StreamerClient(QString host, int port) : http(host, port, false, false)
{
    connect(&http, &HTTPClient::finished, this, &StreamerClient::responseReceived);
    connect(&http, &HTTPClient::error, this, &StreamerClient::error);
}

void StreamerClient::setAddress(const QString &host, int port)
{
    http.setAddress(host, port);
}

void StreamerClient::request(QString command, QVariantMap params, bool json)
{
    http.get(QStringLiteral("%1/%2").arg(basePath, command), params, json);
}

void StreamerClient::request(QString command, QVariantMap params)
{
    request(command, params, true);
}

} // namespace API
} // namespace ZorvaneClient
