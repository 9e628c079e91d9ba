// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QDir>
#include <QFile>
#include <QProcess>
#include <QStringList>

/// What an app_probe process left behind.
struct ProbeResult {
    bool crashed = false;
    int exitCode = -1;
    QByteArray output;
    QByteArray errors;
};

inline QString probeProgram()
{
    return QStringLiteral(ZORVANE_TEST_BIN_DIR "/app_probe");
}

/// Runs app_probe to its end in `folder`.
inline ProbeResult runProbe(const QString &folder, const QStringList &arguments)
{
    constexpr int deadlineMs = 60000;
    QProcess probe;
    probe.setWorkingDirectory(folder);
    probe.start(probeProgram(), arguments);
    ProbeResult result;
    if (!probe.waitForFinished(deadlineMs))
        return result;
    result.crashed = probe.exitStatus() == QProcess::CrashExit;
    result.exitCode = probe.exitCode();
    result.output = probe.readAllStandardOutput();
    result.errors = probe.readAllStandardError();
    return result;
}

inline QByteArray contentsOf(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}
