// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Test.h"

namespace ZorvaneClient::Tests {

/// The client as it is installed, in a process, a home and a working folder of its own, and
/// whatever process it starts in its place. A plugin of the toolkit (`driver/Driver.h`) stands
/// inside and is spoken to; every call that speaks blocks in a local event loop.
class ClientProcess : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(ClientProcess)

public:
    /// `folder` is the working folder and must exist.
    explicit ClientProcess(const QString &folder);
    /// Ends the client that is there still.
    ~ClientProcess() override;

    /// Writes the settings of someone who is signed in.
    void remember(const QString &email, const QString &password, const QString &language);
    bool start(const QStringList &arguments);
    /// The process that was started, not one that took its place.
    const QProcess &process() const { return first; }
    /// Where this client keeps what this process keeps in `file` of its cache folder.
    QString cacheFile(const QString &file) const;

    /// Waits until the client of that number, from 1, has come.
    bool waitForClient(int number);
    /// What the newest one said of itself: pid, parent, folder, arguments.
    QJsonObject client() const { return introduction; }
    bool isClientRunning() const;

    // Each is done to the visible widget of that name inside the visible one of that class, or
    // with no name to the latter; false if it isn't there.
    bool press(const QString &inClass, const QString &name = QString());
    bool choose(const QString &inClass, const QString &name, int index);
    bool close(const QString &className) { return isDone({"close"_s, className}); }
    bool shows(const QString &className) { return isDone({"look"_s, className}); }
    QStringList texts(const QString &inClass);
    QImage picture(const QString &ofClass);

    /// Links that the newest one wanted to open.
    QStringList openedLinks() const { return links; }

private:
    void accept();
    void readLines();
    /// What to do, in which class, to which name, with which value.
    QJsonObject ask(const QStringList &request);
    bool isDone(const QStringList &request) { return ask(request).value("done"_s).toBool(); }

    QDir place;
    QLocalServer server;
    QLocalSocket *socket = nullptr;
    QProcess first;
    int clientCount = 0;
    QJsonObject introduction;
    QList<QJsonObject> answers;
    QStringList links;
};

} // namespace ZorvaneClient::Tests
