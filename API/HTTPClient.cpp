// SPDX-License-Identifier: MIT
#include "API/HTTPClient.h"

#include <QDebug>
#include <QJsonDocument>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QSharedPointer>
#include <QTimer>

#include "API/RequestUrl.h"
#include "App/ProxySettings.h"

namespace ZorvaneClient {
namespace API {

namespace {

constexpr int noReplyError = 1;
constexpr int badDataError = -2;
constexpr int badRedirectError = -3;

// Fixed companions of the codes, not what the server answered.
constexpr int noStatus = -1;
constexpr int emptyStatus = 204;
constexpr int redirectStatus = 302;
constexpr int badRequestStatus = 400;

constexpr int unsetPort = -1;

// A roster of ten thousand cameras takes about five. Without a bound a server could fill the
// memory with a reply that never ends.
constexpr qint64 maximumReplyBytes = 64LL << 20;

QNetworkProxy networkProxy(const App::ProxySettings &proxy)
{
    return QNetworkProxy(QNetworkProxy::HttpProxy, proxy.host, static_cast<quint16>(proxy.port),
                         proxy.userName, proxy.password);
}

QNetworkRequest makeRequest(const QUrl &url, bool json)
{
    QNetworkRequest request(Internal::withLeadingSlashesKept(url));
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::ManualRedirectPolicy);
    request.setRawHeader("Accept", json ? "application/json" : "*/*");
    return request;
}

} // namespace

HTTPClient::HTTPClient(QString host, int port, bool ssl, bool useProxy)
{
    url.setScheme(ssl ? QStringLiteral("https") : QStringLiteral("http"));
    setAddress(host, port);
    if (!useProxy) {
        // Said aloud, or else the desktop's own proxy would be taken.
        manager.setProxy(QNetworkProxy(QNetworkProxy::NoProxy));
    } else if (const auto proxy = App::ProxySettings::load(); proxy.isOn) {
        manager.setProxy(networkProxy(proxy));
    }
}

HTTPClient::HTTPClient(QString host, bool ssl, bool useProxy) : HTTPClient(host, 0, ssl, useProxy)
{
}

HTTPClient::~HTTPClient()
{
    for (QNetworkReply *reply : qAsConst(replies)) {
        reply->disconnect(this);
        reply->deleteLater();
    }
}

void HTTPClient::setAddress(const QString &host, int port)
{
    url.setHost(host, QUrl::DecodedMode);
    url.setPort(port != 0 ? port : unsetPort);
}

void HTTPClient::releaseConnections()
{
    QTimer::singleShot(0, this, [this] {
        if (replies.isEmpty())
            manager.clearConnectionCache();
    });
}

// The manager works in a thread of its own. One that runs on while the process takes its
// statics down can crash it.
void HTTPClient::closeConnections()
{
    // The thread may wait for a reply's answer, or be about to, and nobody gives it any more.
    // Only a reply that is gone keeps nobody waiting.
    qDeleteAll(replies);
    replies.clear();
    manager.clearConnectionCache();
}

bool HTTPClient::begin(const QString &verb, const QString &path, const QVariantMap &query,
                       bool asJson)
{
    if (redirects > 0) {
        url = QUrl(path);
        return false;
    }
    method = verb;
    json = asJson;
    url.setPath(path, QUrl::DecodedMode);
    url.setQuery(Internal::queryOf(query));
    return true;
}

void HTTPClient::get(QString path, QVariantMap params, bool asJson)
{
    begin(QStringLiteral("GET"), path, params, asJson);
    track(manager.get(makeRequest(url, json)));
}

void HTTPClient::del(QString path, QVariantMap params, bool asJson)
{
    begin(QStringLiteral("DELETE"), path, params, asJson);
    track(manager.deleteResource(makeRequest(url, json)));
}

void HTTPClient::post(QString path, QVariantMap query, QByteArray body, QString bodyType,
                      bool asJson)
{
    if (begin(QStringLiteral("POST"), path, query, asJson)) {
        contentType = bodyType;
        data = body;
    }
    QNetworkRequest request = makeRequest(url, json);
    request.setRawHeader("Content-Type", contentType.toLatin1());
    track(manager.post(request, data));
}

void HTTPClient::post(QString path, QByteArray body, QString bodyType, bool asJson)
{
    post(path, QVariantMap(), body, bodyType, asJson);
}

void HTTPClient::track(QNetworkReply *reply)
{
    if (!reply)
        return;
    connect(reply, &QNetworkReply::finished, this, &HTTPClient::httpReply);
    connect(reply, &QNetworkReply::errorOccurred, this, &HTTPClient::httpError);
    connect(reply, &QNetworkReply::readyRead, this, [reply] {
        if (reply->bytesAvailable() <= maximumReplyBytes)
            return;
        qWarning() << "HTTP reply is too large:" << reply->url().host();
        reply->abort();
    });
    replies.append(reply);
}

void HTTPClient::httpReply()
{
    auto *sent = qobject_cast<QNetworkReply *>(sender());
    if (!sent) {
        qDebug() << "HTTP responce received but reply is null";
        fail(noReplyError, noStatus);
        return;
    }
    const QSharedPointer<QNetworkReply> reply(sent, &QObject::deleteLater);
    replies.removeOne(sent);

    const QUrl target = reply->attribute(QNetworkRequest::RedirectionTargetAttribute).toUrl();
    if (target.isEmpty())
        deliver(reply->isOpen() ? reply->readAll() : QByteArray());
    else
        followRedirect(target);
}

void HTTPClient::followRedirect(const QUrl &target)
{
    if (!Internal::isFollowable(target)) {
        qDebug() << "Bad redirect address";
        fail(badRedirectError, redirectStatus);
        return;
    }
    ++redirects;
    if (method == QLatin1String("GET"))
        get(target.toString(), QVariantMap(), json);
    else if (method == QLatin1String("POST"))
        post(target.toString(), data, contentType, json);
    else
        releaseConnections(); // a DELETE is not repeated and ends without a signal
}

void HTTPClient::deliver(const QByteArray &body)
{
    if (body.isEmpty()) {
        qDebug() << "HTTP bad data: empty response";
        fail(badDataError, emptyStatus);
        return;
    }
    if (!json) {
        emit finished(body);
        return;
    }
    QJsonParseError parseError;
    const QVariant response = QJsonDocument::fromJson(body, &parseError).toVariant();
    if (parseError.error != QJsonParseError::NoError) {
        qDebug() << "HTTP bad data: cannot parse response:" << QString::fromUtf8(body);
        qDebug() << "Reason: " << parseError.errorString();
        fail(badDataError, badRequestStatus);
        return;
    }
    emit finished(response);
}

// Whoever asked may leave this object behind after a failure: it must not hold a connection.
void HTTPClient::fail(int errorCode, int httpStatus)
{
    releaseConnections();
    emit error(errorCode, httpStatus);
}

void HTTPClient::httpError()
{
    if (!qobject_cast<QNetworkReply *>(sender())) {
        qDebug() << "HTTP error received but reply is null";
        fail(noReplyError, noStatus);
        return;
    }
    qDebug() << "HTTP error"; // finished() of the same reply follows and tells the outcome
}

} // namespace API
} // namespace ZorvaneClient
