// SPDX-License-Identifier: MIT
#pragma once

#include <QObject>
#include <QString>
#include <QVariant>

#include "API/HTTPClient.h"

namespace ZorvaneClient {
namespace API {

/// Exchanges with a streaming endpoint: the streaming host of the service, or a video server
/// on the local network. Replies are delivered as HTTPClient delivers them.
class StreamerClient : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(StreamerClient)

public:
    /// The streaming host of the service: https, by the proxy of the settings.
    StreamerClient();
    /// A server on the local network: plain http, never by a proxy.
    StreamerClient(QString host, int port);

    /// Where the next request goes; a running one is left alone.
    void setAddress(const QString &host, int port);

public slots:
    void request(QString command, QVariantMap params, bool json);
    /// Asks for JSON.
    void request(QString command, QVariantMap params);

signals:
    void responseReceived(QVariant response);
    void error(int errorCode, int httpStatus);

private:
    HTTPClient http;
    QString basePath;
};

} // namespace API
} // namespace ZorvaneClient
