// SPDX-License-Identifier: MIT
#pragma once

#include <QElapsedTimer>
#include <QJsonArray>
#include <QJsonObject>
#include <QLocalSocket>
#include <QObject>
#include <QTimer>

#include <chrono>

namespace ZorvaneClient::Tests {

/// Stands inside a running client and tells the run at the other end of the socket what can be
/// seen there, and where. It only looks: what is done is done with the pointer and the keys.
/// A request is a JSON array a line, its answer a JSON object a line. Places are in pixels of
/// the desktop, times in milliseconds, sizes in bytes.
class Eyes : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(Eyes)

public:
    Eyes(const QString &socketName, QObject *parent);
    ~Eyes() override { socket.disconnect(this); }

private:
    void readRequests();
    void say(const QJsonObject &line);
    QJsonObject answer(const QJsonArray &request);
    QJsonObject vitals();
    /// The event loop comes round: remembers the longest time that it took.
    void beat();

    QLocalSocket socket;
    QTimer pulse;
    QElapsedTimer sinceBeat;
    std::chrono::milliseconds longestStall{0};
};

} // namespace ZorvaneClient::Tests
