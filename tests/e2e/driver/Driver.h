// SPDX-License-Identifier: MIT
#pragma once

#include <QJsonObject>
#include <QLocalSocket>
#include <QObject>
#include <QUrl>

namespace ZorvaneClient::Tests {

/// Stands inside a running client and does what the test at the other end of the socket asks:
/// presses its buttons, reads its texts and pictures, takes its links in place of a browser.
/// A request is a JSON array a line, an answer a JSON object a line.
class Driver : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(Driver)

public:
    Driver(const QString &socketName, QObject *parent);
    ~Driver() override { socket.disconnect(this); }

public slots:
    void linkOpened(const QUrl &url);

private:
    void readRequests();
    void say(const QJsonObject &line);

    QLocalSocket socket;
};

} // namespace ZorvaneClient::Tests
