// SPDX-License-Identifier: MIT
#pragma once

#include <QJsonObject>
#include <QLocalSocket>
#include <QObject>
#include <QUrl>

namespace ZorvaneClient::Tests {

/// Stands inside a running client and does what the test at the other end of the socket asks:
/// presses its buttons, reads its texts, takes its links in place of a browser.
/// Both sides send a JSON object a line.
class Driver : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(Driver)

public:
    explicit Driver(const QString &socketName);

public slots:
    void linkOpened(const QUrl &url);

private:
    void readRequests();
    void say(const QJsonObject &line);
    QJsonObject answer(const QJsonObject &request);

    QLocalSocket socket;
};

} // namespace ZorvaneClient::Tests
