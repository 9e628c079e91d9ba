// SPDX-License-Identifier: MIT
#pragma once

#include "App/Environment.h"
#include "tests/support/ProcessTraces.h"

namespace ZorvaneClient::Tests {

/// While it lives, tiles start a companion player that does what a script says; the lines a
/// script can have are told in scripted-child/main.cpp. One at a time.
class ScriptedChild
{
    Q_DISABLE_COPY(ScriptedChild)

public:
    explicit ScriptedChild(const QStringList &script = QStringList())
    {
        setScript(script);
        qputenv("ZORVANE_CHILD_FOLDER", QFile::encodeName(folder.path()));
        App::Environment::setPlayerProgram(program());
    }
    ~ScriptedChild()
    {
        App::Environment::setPlayerProgram(QString());
        qunsetenv("ZORVANE_CHILD_FOLDER");
    }

    static QString program() { return ZORVANE_SCRIPTED_CHILD; }

    /// For children started from now on.
    void setScript(const QStringList &script) { write("script", script.join('\n') + '\n'); }
    /// Lets a child go on that waits for `name`.
    void tell(const QString &name) { write(name, QString()); }

    /// Arguments of each start so far.
    QList<QStringList> starts() const
    {
        QList<QStringList> result;
        const QStringList all = lines("starts");
        for (const QString &line : all)
            result << line.split('\t').mid(1);
        return result;
    }
    qint64 lastProcessId() const
    {
        const QStringList all = lines("starts");
        return all.isEmpty() ? 0 : all.last().section('\t', 0, 0).toLongLong();
    }
    /// Lines of standard input of all children so far.
    QStringList commands() const { return lines("commands"); }
    void forgetCommands() { QFile::remove(folder.filePath("commands")); }

    /// False also for a process that has ended and was not yet waited for.
    static bool isAlive(qint64 processId)
    {
        const QByteArray state = ProcessTraces::statusOf(QString::number(processId)).first();
        return !state.isEmpty() && state != "Z" && state != "X";
    }

private:
    void write(const QString &name, const QString &content)
    {
        QFile file(folder.filePath(name));
        const QByteArray bytes = content.toUtf8();
        if (!file.open(QIODevice::WriteOnly) || file.write(bytes) != bytes.size())
            qFatal("can't write %s", qPrintable(file.fileName()));
    }
    /// Without an unfinished last one, which is still being written.
    QStringList lines(const QString &name) const
    {
        const QByteArray bytes = ProcessTraces::contentOf(folder.filePath(name));
        return QString::fromUtf8(bytes).split('\n').mid(0, int(bytes.count('\n')));
    }

    QTemporaryDir folder;
};

} // namespace ZorvaneClient::Tests
