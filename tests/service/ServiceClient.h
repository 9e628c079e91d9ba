// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Test.h"

#include "App/ServiceProfile.h"

namespace ZorvaneClient::Tests {

/// How an exchange with the service ended.
struct Answer {
    QJsonObject json() const { return QJsonDocument::fromJson(body).object(); }
    QJsonObject response() const { return json()["response"].toObject(); }
    /// 0 for success.
    int code() const { return json()["success"].toBool() ? 0 : response()["code"].toInt(-1); }

    int status; ///< 0 when no reply came
    QByteArray body;
    QString end; ///< where a redirect points, or why there is no whole reply
};

/// Speaks to the service of a profile the way the client does, and trusts its authority alone.
class ServiceClient
{
public:
    static constexpr int deadline = 15'000;
    static constexpr const char *formType = "application/x-www-form-urlencoded";
    static constexpr const char *jsonType = "application/json";

    App::ServiceProfile profile;

    /// Addresses of the service interface and of the streaming one.
    QString api(const QString &path) const
    {
        return "https://%1:%2"_s.arg(profile.apiHost).arg(profile.apiPort) + path;
    }
    QString streaming(const QString &path) const
    {
        return "https://%1:%2"_s.arg(profile.streamingHost).arg(profile.streamingPort) + path;
    }

    /// With `whileHeld`, a reply that has begun and isn't whole when that is true.
    Answer ask(const QString &address, const QByteArray &method = "GET",
               const QByteArray &body = {}, const QByteArray &type = formType,
               const std::function<bool()> &whileHeld = {}) const
    {
        // Qt sends one of several leading slashes; what it will drop is added here.
        QUrl url(address);
        const auto lost =
            url.path().size() - url.adjusted(QUrl::NormalizePathSegments).path().size();
        url.setPath(QString(lost, '/') + url.path());
        QNetworkRequest request(url);
        QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
        tls.setCaCertificates(QSslCertificate::fromPath(profile.caCertificate));
        request.setSslConfiguration(tls);
        request.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                             QNetworkRequest::ManualRedirectPolicy);
        request.setHeader(QNetworkRequest::ContentTypeHeader, type);
        QNetworkAccessManager manager;
        manager.setProxy(QNetworkProxy::NoProxy);
        QNetworkReply *reply = manager.sendCustomRequest(request, method, body);
        const auto status = QNetworkRequest::HttpStatusCodeAttribute;
        const bool held = whileHeld &&
                          QTest::qWaitFor([&] { return reply->attribute(status).isValid(); }) &&
                          whileHeld() && !reply->isFinished();
        Answer answer = {0, "", "never ends"_s};
        if (!held && QTest::qWaitFor([reply] { return reply->isFinished(); }, deadline))
            answer.end = reply->attribute(QNetworkRequest::RedirectionTargetAttribute).toString();
        answer.status = reply->attribute(status).toInt();
        answer.body = reply->readAll();
        if (reply->error() == QNetworkReply::RemoteHostClosedError)
            answer.end = answer.body.isEmpty() ? "no answer"_s : "torn"_s;
        else if (held)
            answer.end = "held back"_s;
        return answer;
    }

    /// A new session, empty on failure, by what account() makes.
    QString signIn(const QByteArray &account) const
    {
        return ask(api("/public/sessions"_s), "POST", account).response()["session_id"].toString();
    }
    /// The body of a request that signs in.
    static QByteArray account(const QString &email, const QString &password)
    {
        return "clientType=windows&clientVersion=1.0&login=" + QUrl::toPercentEncoding(email) +
               "&password=" + QUrl::toPercentEncoding(password);
    }
};

} // namespace ZorvaneClient::Tests
