// SPDX-License-Identifier: MIT
#include "API/HTTPClient.h"

#include <QCoreApplication>
#include <QDebug>
#include <QJsonDocument>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QNetworkRequest>
#include <QSharedPointer>
#include <QTimer>
#include <QUrlQuery>

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

int leadingSlashes(const QString &path)
{
    int count = 0;
    while (count < path.size() && path.at(count) == QLatin1Char('/'))
        ++count;
    return count;
}

// The network layer normalises the path when it writes the request line, and that can cost
// one of several leading slashes. What it will drop is added here.
QUrl withLeadingSlashesKept(const QUrl &url)
{
    const QString path = url.path(QUrl::FullyEncoded);
    const QString normalised = url.adjusted(QUrl::NormalizePathSegments).path(QUrl::FullyEncoded);
    const int lost = leadingSlashes(path) - leadingSlashes(normalised);
    if (lost <= 0)
        return url;
    QUrl kept = url;
    // The text is encoded already: taken for decoded, its percent signs would be encoded again.
    kept.setPath(QString(lost, QLatin1Char('/')) + path, QUrl::TolerantMode);
    return kept;
}

QNetworkRequest makeRequest(const QUrl &url, bool json)
{
    QNetworkRequest request(withLeadingSlashesKept(url));
    request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                         QNetworkRequest::ManualRedirectPolicy);
    request.setRawHeader("Accept", json ? "application/json" : "*/*");
    return request;
}

// A server must not point the program at a local file or at a document inside the address.
// An address without a scheme goes on, and fails for want of a host.
bool isFollowable(const QUrl &target)
{
    const QString scheme = target.scheme();
    return target.isValid() && (scheme.isEmpty() || scheme == QLatin1String("http") ||
                                scheme == QLatin1String("https"));
}

} // namespace

QSet<HTTPClient *> &HTTPClient::living()
{
    // Never freed: clients may die with the statics.
    static auto *clients = new QSet<HTTPClient *>;
    return *clients;
}

// A manager works in a thread of its own. One that runs on while the process takes its statics
// down can crash it.
void HTTPClient::closeAllConnections()
{
    for (HTTPClient *client : qAsConst(living())) {
        // The thread may wait for a reply's answer, or be about to, and nobody gives it any
        // more. Only a reply that is gone keeps nobody waiting.
        qDeleteAll(client->replies);
        client->replies.clear();
        client->manager.clearConnectionCache();
    }
}

HTTPClient::HTTPClient(QString host, int port, bool ssl, bool useProxy)
{
    if (living().isEmpty()) {
        qRemovePostRoutine(closeAllConnections);
        qAddPostRoutine(closeAllConnections);
    }
    living().insert(this);
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
    living().remove(this);
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

void HTTPClient::get(QString path, QVariantMap params, bool asJson)
{
    if (redirects == 0) {
        method = QStringLiteral("GET");
        json = asJson;
        setRequestUrl(path, params);
    } else {
        url = QUrl(path);
    }
    track(manager.get(makeRequest(url, json)));
}

void HTTPClient::del(QString path, QVariantMap params, bool asJson)
{
    if (redirects == 0) {
        method = QStringLiteral("DELETE");
        json = asJson;
        setRequestUrl(path, params);
    } else {
        url = QUrl(path);
    }
    track(manager.deleteResource(makeRequest(url, json)));
}

void HTTPClient::post(QString path, QVariantMap query, QByteArray body, QString bodyType,
                      bool asJson)
{
    if (redirects == 0) {
        method = QStringLiteral("POST");
        json = asJson;
        contentType = bodyType;
        setRequestUrl(path, query);
        data = body;
    } else {
        url = QUrl(path);
    }
    QNetworkRequest request = makeRequest(url, json);
    request.setRawHeader("Content-Type", contentType.toLatin1());
    track(manager.post(request, data));
}

void HTTPClient::post(QString path, QByteArray body, QString bodyType, bool asJson)
{
    post(path, QVariantMap(), body, bodyType, asJson);
}

void HTTPClient::setRequestUrl(const QString &path, const QVariantMap &params)
{
    url.setPath(path, QUrl::DecodedMode);
    QUrlQuery query;
    for (auto param = params.cbegin(); param != params.cend(); ++param)
        query.addQueryItem(param.key(), param.value().toString());
    url.setQuery(query);
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
        emit error(noReplyError, noStatus);
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
    if (!isFollowable(target)) {
        qDebug() << "Bad redirect address";
        releaseConnections();
        emit error(badRedirectError, redirectStatus);
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
        releaseConnections();
        emit error(badDataError, emptyStatus);
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
        releaseConnections();
        emit error(badDataError, badRequestStatus);
        return;
    }
    emit finished(response);
}

void HTTPClient::httpError()
{
    if (!qobject_cast<QNetworkReply *>(sender())) {
        qDebug() << "HTTP error received but reply is null";
        emit error(noReplyError, noStatus);
        return;
    }
    qDebug() << "HTTP error"; // finished() of the same reply follows and tells the outcome
}

} // namespace API
} // namespace ZorvaneClient
