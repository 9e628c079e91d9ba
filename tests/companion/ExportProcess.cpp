// SPDX-License-Identifier: MIT
#include "tests/companion/ExportProcess.h"

#include "tests/support/Test.h"

#include <csignal>

namespace ZorvaneClient::Tests {

namespace {

const QByteArray percentWord = "export-percent ";

} // namespace

ExportProcess::ExportProcess()
    : ownFolder(QDir::current().filePath("films-XXXXXX"_s))
    , targetPath(ownFolder.filePath("127.0.0.1 - Tür 03.03.15.film"_s))
{
}

ExportProcess::~ExportProcess()
{
    process.kill();
    process.waitForFinished();
}

void ExportProcess::start(const QByteArray &url, const QString &container, int recordedMilliseconds,
                          const QStringList &wrapper)
{
    startWithArguments({"export"_s, QString::fromLatin1(url), container,
                        QString::number(recordedMilliseconds), targetPath},
                       wrapper);
}

void ExportProcess::startWithArguments(const QStringList &arguments, const QStringList &wrapper)
{
    const QStringList command =
        wrapper + QStringList{QStringLiteral(ZORVANE_BIN_DIR "/vlc-stream")} + arguments;
    process.start(command.first(), command.mid(1));
    process.waitForStarted();
}

void ExportProcess::signal(int number)
{
    ::kill(static_cast<pid_t>(process.processId()), number);
}

int ExportProcess::exitCode() const
{
    return process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
}

QList<QByteArray> ExportProcess::lines()
{
    output += process.readAllStandardOutput();
    QList<QByteArray> parts = output.split('\n');
    parts.removeLast();
    return parts;
}

QList<int> ExportProcess::percents()
{
    QList<int> numbers;
    const QList<QByteArray> all = lines();
    for (const QByteArray &line : all) {
        if (line.startsWith(percentWord))
            numbers.append(line.mid(percentWord.size()).toInt());
    }
    return numbers;
}

QStringList ExportProcess::files() const
{
    return QDir(ownFolder.path())
        .entryList(QDir::AllEntries | QDir::Hidden | QDir::System | QDir::NoDotAndDotDot);
}

} // namespace ZorvaneClient::Tests
