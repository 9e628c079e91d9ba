// SPDX-License-Identifier: MIT
#include "tests/demo/DemoClient.h"

#include "tests/support/Test.h"

namespace ZorvaneClient::Tests {

namespace {

/// Qt sends one of several leading slashes; what it will drop is added here.
QUrl withLeadingSlashesKept(const QString &text)
{
    QUrl url(text);
    const QString path = url.path();
    const QString sent = url.adjusted(QUrl::NormalizePathSegments).path();
    if (path.startsWith("//"_s) && sent.size() < path.size())
        url.setPath(QString(path.size() - sent.size(), QLatin1Char('/')) + path);
    return url;
}

} // namespace

DemoClient::DemoClient(const DemoService &demo) : service(demo)
{
    manager.setProxy(QNetworkProxy::NoProxy);
}

QNetworkRequest DemoClient::request(const QString &url) const
{
    QNetworkRequest result(withLeadingSlashesKept(url));
    QSslConfiguration tls = QSslConfiguration::defaultConfiguration();
    tls.setCaCertificates(QSslCertificate::fromPath(service.caCertificate()));
    result.setSslConfiguration(tls);
    result.setAttribute(QNetworkRequest::RedirectPolicyAttribute,
                        QNetworkRequest::ManualRedirectPolicy);
    return result;
}

Answer DemoClient::finish(QNetworkReply *reply, int timeoutMs)
{
    QEventLoop loop;
    QObject::connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    QTimer::singleShot(timeoutMs, &loop, &QEventLoop::quit);
    if (!reply->isFinished())
        loop.exec();
    Answer answer;
    answer.timedOut = !reply->isFinished();
    answer.status = reply->attribute(QNetworkRequest::HttpStatusCodeAttribute).toInt();
    answer.redirect = reply->attribute(QNetworkRequest::RedirectionTargetAttribute).toUrl();
    answer.error = reply->error();
    answer.body = reply->readAll();
    reply->abort();
    reply->deleteLater();
    return answer;
}

Answer DemoClient::post(const QString &url, const QByteArray &body, const QByteArray &type)
{
    QNetworkRequest post = request(url);
    post.setRawHeader("Content-Type", type);
    return finish(manager.post(post, body), 15'000);
}

Answer DemoClient::signIn(const QByteArray &login, const QByteArray &password)
{
    return post(api("/public/sessions"_s),
                "clientType=windows&clientVersion=1.0&login=" + login.toPercentEncoding() +
                    "&password=" + password.toPercentEncoding());
}

QString DemoClient::session()
{
    return signIn(service.email().toUtf8(), service.password().toUtf8())
        .response()
        .value("session_id"_s)
        .toString();
}

QString DemoClient::query(const DemoCamera &camera, const QString &session) const
{
    return "?server=%1&camera=%2&sessionId=%3"_s.arg(camera.lan ? "1"_s : camera.server)
        .arg(camera.camera)
        .arg(camera.lan ? service.lanPassword() : session);
}

} // namespace ZorvaneClient::Tests
