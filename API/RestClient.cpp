// SPDX-License-Identifier: MIT
#include "API/RestClient.h"

#include "API/RequestUrl.h"
#include "API/ServiceLink.h"
#include "App/ServiceProfile.h"

namespace ZorvaneClient {
namespace API {

namespace {

constexpr int badEnvelopeError = -2;
constexpr int badEnvelopeStatus = 400;
constexpr int serviceErrorStatus = 500;

QString pathOf(const QString &command)
{
    return QStringLiteral("/%1").arg(command);
}

} // namespace

RestClient::RestClient()
    : http(App::ServiceProfile::current().apiHost, App::ServiceProfile::current().apiPort, true,
           true)
{
    connect(&http, &HTTPClient::finished, this, &RestClient::httpReply);
    connect(&http, &HTTPClient::error, this, [this](int errorCode, int httpStatus) {
        ServiceLink::instance().setAnswered(false);
        emit error(errorCode, httpStatus);
    });
}

void RestClient::request(QString command, QVariantMap params, QNetworkAccessManager::Operation op)
{
    const QString path = pathOf(command);
    ServiceLink::instance().setAsked();
    switch (op) {
    case QNetworkAccessManager::GetOperation:
        http.get(path, params, true);
        break;
    case QNetworkAccessManager::DeleteOperation:
        http.del(path, params, true);
        break;
    default:
        http.post(path, Internal::queryOf(params).query(QUrl::FullyEncoded).toUtf8(),
                  QStringLiteral("application/x-www-form-urlencoded"), true);
    }
}

void RestClient::request(QString command, QVariantMap params)
{
    request(command, params, QNetworkAccessManager::GetOperation);
}

void RestClient::post(QString command, QVariantMap params)
{
    request(command, params, QNetworkAccessManager::PostOperation);
}

void RestClient::del(QString command, QVariantMap params)
{
    request(command, params, QNetworkAccessManager::DeleteOperation);
}

void RestClient::postJSON(QString path, QVariantMap query, QByteArray body)
{
    ServiceLink::instance().setAsked();
    http.post(pathOf(path), query, body, QStringLiteral("application/json"), true);
}

void RestClient::httpReply(QVariant response)
{
    const QVariantMap map = response.toMap();
    const auto success = map.constFind(QStringLiteral("success"));
    ServiceLink::instance().setAnswered(success != map.constEnd());
    if (success == map.constEnd()) {
        fail(badEnvelopeError, badEnvelopeStatus);
        return;
    }
    const QVariant content = map.value(QStringLiteral("response"));
    if (success->toBool())
        emit responseReceived(content);
    else
        fail(content.toMap().value(QStringLiteral("code")).toInt(), serviceErrorStatus);
}

// The exchange below has succeeded here, so nothing has released its connection.
void RestClient::fail(int errorCode, int httpStatus)
{
    http.releaseConnections();
    emit error(errorCode, httpStatus);
}

} // namespace API
} // namespace ZorvaneClient
