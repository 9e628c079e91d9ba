// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Test.h"

#include "demo/client/DemoService.h"

namespace ZorvaneClient::Tests {

using namespace ZorvaneDemo;

/// How an exchange ended.
struct Answer {
    int status = 0; ///< 0 when no reply came
    QNetworkReply::NetworkError error = QNetworkReply::NoError;
    QByteArray body;
    QUrl redirect;
    bool timedOut = false; ///< no end within the time given

    QJsonObject json() const { return QJsonDocument::fromJson(body).object(); }
    QJsonArray list() const { return QJsonDocument::fromJson(body).array(); }
    bool success() const { return json().value("success"_s).toBool(); }
    QJsonObject response() const { return json().value("response"_s).toObject(); }
    int code() const { return response().value("code"_s).toInt(); }
};

/// Speaks to a demo service the way the client does, paths and queries as given.
class DemoClient
{
public:
    /// Trusts the service's authority and nothing else.
    explicit DemoClient(const DemoService &service);

    Answer get(const QString &url, int timeoutMs = 15'000)
    {
        return finish(manager.get(request(url)), timeoutMs);
    }
    Answer post(const QString &url, const QByteArray &body,
                const QByteArray &type = "application/x-www-form-urlencoded");
    Answer del(const QString &url) { return finish(manager.deleteResource(request(url)), 15'000); }

    /// URL of a path at the API, at the streaming endpoint, for streams and at a LAN server.
    QString api(const QString &path) const
    {
        return "https://127.0.0.1:%1"_s.arg(service.apiPort()) + path;
    }
    QString streaming(const QString &path) const
    {
        return "https://127.0.0.1:%1"_s.arg(service.streamingPort()) + path;
    }
    QString flv(const QString &path) const
    {
        return "http://127.0.0.1:%1"_s.arg(service.flvPort()) + path;
    }
    QString lan(const QString &path) const
    {
        return "http://127.0.0.1:%1"_s.arg(service.lanPorts().value(0)) + path;
    }

    Answer signIn(const QByteArray &login, const QByteArray &password);
    /// Signs in with the service's own account; the session, empty on failure.
    QString session();
    /// Query of a camera; a LAN camera takes its server's password for the session.
    QString query(const DemoCamera &camera, const QString &session) const;

private:
    Answer finish(QNetworkReply *reply, int timeoutMs);
    QNetworkRequest request(const QString &url) const;

    const DemoService &service;
    QNetworkAccessManager manager;
};

} // namespace ZorvaneClient::Tests
