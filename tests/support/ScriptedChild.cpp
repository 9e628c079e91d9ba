// SPDX-License-Identifier: MIT
#include "tests/support/ScriptedChild.h"

#include <QFile>

#include "App/Environment.h"

namespace ZorvaneClient {
namespace Tests {

namespace {

constexpr auto folderVariable = "ZORVANE_CHILD_FOLDER";

void writeFile(const QString &path, const QByteArray &content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size())
        qFatal("can't write %s", qPrintable(path));
}

} // namespace

ScriptedChild::ScriptedChild(const QStringList &script)
{
    setScript(script);
    qputenv(folderVariable, QFile::encodeName(folder.path()));
    App::Environment::setPlayerProgram(program());
}

ScriptedChild::~ScriptedChild()
{
    App::Environment::setPlayerProgram(QString());
    qunsetenv(folderVariable);
}

QString ScriptedChild::program()
{
    return QStringLiteral(ZORVANE_SCRIPTED_CHILD);
}

void ScriptedChild::setScript(const QStringList &script)
{
    writeFile(folder.filePath(QStringLiteral("script")),
              script.join(QLatin1Char('\n')).toUtf8() + '\n');
}

void ScriptedChild::tell(const QString &name)
{
    writeFile(folder.filePath(name), QByteArray());
}

QList<QByteArray> ScriptedChild::lines(const QString &name) const
{
    QFile file(folder.filePath(name));
    QList<QByteArray> result;
    if (!file.open(QIODevice::ReadOnly))
        return result;
    while (!file.atEnd()) {
        const QByteArray line = file.readLine();
        if (line.endsWith('\n')) // else it is still being written
            result << line.chopped(1);
    }
    return result;
}

QList<QStringList> ScriptedChild::starts() const
{
    QList<QStringList> result;
    for (const QByteArray &line : lines(QStringLiteral("starts")))
        result << QString::fromUtf8(line).split(QLatin1Char('\t')).mid(1);
    return result;
}

qint64 ScriptedChild::lastProcessId() const
{
    const QList<QByteArray> starts = lines(QStringLiteral("starts"));
    return starts.isEmpty() ? 0 : starts.last().split('\t').first().toLongLong();
}

QStringList ScriptedChild::commands() const
{
    QStringList result;
    for (const QByteArray &line : lines(QStringLiteral("commands")))
        result << QString::fromLatin1(line);
    return result;
}

void ScriptedChild::forgetCommands()
{
    QFile::remove(folder.filePath(QStringLiteral("commands")));
}

bool ScriptedChild::isAlive(qint64 processId)
{
    QFile status(QStringLiteral("/proc/%1/stat").arg(processId));
    if (!status.open(QIODevice::ReadOnly))
        return false;
    const QByteArray text = status.readAll();
    const QByteArray state = text.mid(text.lastIndexOf(')') + 2, 1);
    return state != "Z" && state != "X";
}

} // namespace Tests
} // namespace ZorvaneClient
