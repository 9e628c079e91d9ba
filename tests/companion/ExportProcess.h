// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Test.h"

namespace ZorvaneClient::Tests {

/// The real player at an export into a folder of its own. Its standard input stays open, and
/// nothing is ever written to it.
class ExportProcess
{
    Q_DISABLE_COPY(ExportProcess)

public:
    ExportProcess();
    /// Kills the child if it still runs.
    ~ExportProcess();

    /// Exports into `target()`, or into what setTarget() said. `wrapper` is a command that runs
    /// the command that follows it.
    void start(const QByteArray &url, const QString &container, int recordedMilliseconds,
               const QStringList &wrapper = QStringList());
    void startWithArguments(const QStringList &arguments,
                            const QStringList &wrapper = QStringList());
    void closeInput() { process.closeWriteChannel(); }
    void signal(int number);

    bool isRunning() const { return process.state() != QProcess::NotRunning; }
    /// -1 if a signal ended it.
    int exitCode() const;
    QList<QByteArray> lines();
    QByteArray lastLine() { return lines().isEmpty() ? QByteArray() : lines().last(); }
    /// Of the "export-percent" lines, in their order.
    QList<int> percents();
    QByteArray errorOutput() { return process.readAllStandardError(); }

    QString target() const { return targetPath; }
    void setTarget(const QString &path) { targetPath = path; }
    QString folder() const { return ownFolder.path(); }
    /// Names of what is in the folder.
    QStringList files() const;

private:
    QTemporaryDir ownFolder;
    QString targetPath;
    QProcess process;
    QByteArray output;
};

} // namespace ZorvaneClient::Tests
