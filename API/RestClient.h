// SPDX-License-Identifier: MIT
#pragma once

#include <QNetworkAccessManager>
#include <QObject>
#include <QVariant>

#include "API/HTTPClient.h"

namespace ZorvaneClient {
namespace API {

/// One exchange with the API host of the service. Opens the envelope of the reply:
/// `{"success": true, "response": ...}` or `{"success": false, "response": {"code": ...}}`.
class RestClient : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(RestClient)

public:
    RestClient();

public slots:
    // The path is "/" and the command, so a command that begins with a slash goes out with two.
    // Parameters stand in the query of GET and DELETE and in the form body of POST.
    void request(QString command, QVariantMap params, QNetworkAccessManager::Operation op);
    void request(QString command, QVariantMap params);
    void post(QString command, QVariantMap params);
    void del(QString command, QVariantMap params);
    void postJSON(QString path, QVariantMap query, QByteArray body);

signals:
    /// What `response` of a successful envelope holds.
    void responseReceived(QVariant response);
    /// Those of HTTPClient; (-2, 400) when there is no envelope; (code, 500) from the service.
    void error(int errorCode, int httpStatus);

private slots:
    void httpReply(QVariant response);

private:
    void fail(int errorCode, int httpStatus);

    HTTPClient http;
};

} // namespace API
} // namespace ZorvaneClient
