// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Test.h"

class QLocalSocket;

namespace ZorvaneClient::Tests {

/// The client as it is installed, in a process and a working folder of its own, and whatever
/// process it starts in its place. A plugin of the toolkit (`driver/Driver.h`) stands inside
/// and is spoken to; every call that speaks blocks in a local event loop.
class ClientProcess : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(ClientProcess)

public:
    /// `folder` is the working folder and must exist.
    explicit ClientProcess(const QString &folder);
    /// Ends the client that is there still.
    ~ClientProcess() override;

    bool start(const QStringList &arguments);
    /// The process that was started, not one that took its place.
    const QProcess &process() const { return first; }

    /// Waits until one more client has come than `clientsSoFar()` said before.
    bool waitForClient(int number);
    int clientsSoFar() const { return clientCount; }
    /// What the newest one said of itself: pid, parent, folder, arguments.
    QJsonObject client() const { return introduction; }
    bool isClientRunning() const;

    // Each is done to the visible widget of that name inside the visible one of that class, or
    // with no name to the latter; false if it isn't there.
    bool press(const QString &inClass, const QString &name);
    bool answerQuestion(bool ok);
    bool choose(const QString &inClass, const QString &name, int index);
    bool close(const QString &className);
    bool shows(const QString &className);
    QStringList texts(const QString &inClass);

    /// Links that the newest one wanted to open.
    QStringList openedLinks() const { return links; }

private:
    void accept();
    void readLines();
    QJsonObject ask(const QJsonObject &request);

    QLocalServer server;
    QLocalSocket *socket = nullptr;
    QProcess first;
    int clientCount = 0;
    QJsonObject introduction;
    QList<QJsonObject> answers;
    QStringList links;
};

} // namespace ZorvaneClient::Tests
