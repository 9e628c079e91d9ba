// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <QTemporaryDir>

namespace ZorvaneClient {
namespace Tests {

/// While it lives, tiles start a companion player that does what a script says; the lines a
/// script can have are told in scripted-child/main.cpp. One at a time.
class ScriptedChild
{
    Q_DISABLE_COPY(ScriptedChild)

public:
    explicit ScriptedChild(const QStringList &script = QStringList());
    ~ScriptedChild();

    static QString program();

    /// For children started from now on.
    void setScript(const QStringList &script);
    /// Lets a child go on that waits for `name`.
    void tell(const QString &name);

    /// Arguments of each start so far.
    QList<QStringList> starts() const;
    qint64 lastProcessId() const;
    /// Lines of standard input of all children so far.
    QStringList commands() const;
    void forgetCommands();

    /// False also for a process that has ended and was not yet waited for.
    static bool isAlive(qint64 processId);

private:
    QList<QByteArray> lines(const QString &name) const;

    QTemporaryDir folder;
};

} // namespace Tests
} // namespace ZorvaneClient
