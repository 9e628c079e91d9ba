// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QList>
#include <QNetworkAccessManager>
#include <QObject>
#include <QString>
#include <QUrl>
#include <QVariant>

#include "API/ExitTask.h"

class QNetworkReply;

namespace ZorvaneClient {
namespace API {

/// One exchange with one host over HTTP: sends a request, follows redirects and ends in
/// finished() or error(). No time-out and no retry; a reply that is still running when its
/// client dies is dropped without a signal. One request at a time. The end of the application
/// object ends what clients that are left still have running.
class HTTPClient : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(HTTPClient)

public:
    /// Port 0 is the default port of the scheme. With `useProxy` the proxy of the settings is
    /// taken when it is switched on there; without it no proxy is ever used.
    HTTPClient(QString host, int port, bool ssl, bool useProxy);
    HTTPClient(QString host, bool ssl, bool useProxy);
    ~HTTPClient() override;

    /// Where the next request goes; a running one is left alone.
    void setAddress(const QString &host, int port);

    /// Closes what idle connections hold: sockets and the thread behind them. Takes effect
    /// from the event loop, and not while a reply is running.
    void releaseConnections();

public slots:
    // `path` is decoded text. After a redirect was followed on this object every path is
    // taken for a complete URL.
    void get(QString path, QVariantMap params, bool asJson);
    void del(QString path, QVariantMap params, bool asJson);
    void post(QString path, QVariantMap query, QByteArray body, QString bodyType, bool asJson);
    void post(QString path, QByteArray body, QString bodyType, bool asJson);

signals:
    /// The parsed document if JSON was asked for, else the body as a byte array.
    /// The HTTP status is not looked at.
    void finished(QVariant response);
    /// (1, -1) no reply object; (-3, 302) bad redirect address; (-2, 204) empty body, no
    /// connection or a body beyond all bounds; (-2, 400) not JSON.
    void error(int errorCode, int httpStatus);

private slots:
    void httpReply();
    void httpError();

private:
    /// Notes what is asked, for a redirect to repeat. False after a redirect: `path` is the
    /// whole URL then, and all else stays as it was asked.
    bool begin(const QString &verb, const QString &path, const QVariantMap &query, bool asJson);
    void track(QNetworkReply *reply);
    void followRedirect(const QUrl &target);
    void deliver(const QByteArray &body);
    void fail(int errorCode, int httpStatus);
    void closeConnections();

    QNetworkAccessManager manager;
    QString method;
    QUrl url;
    bool json = false;
    QByteArray data;
    QString contentType;
    int redirects = 0;
    QList<QNetworkReply *> replies;
    Internal::ExitTask closing{[this] { closeConnections(); }};
};

} // namespace API
} // namespace ZorvaneClient
