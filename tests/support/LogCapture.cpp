// SPDX-License-Identifier: MIT
#include "tests/support/LogCapture.h"

#include <QMutex>
#include <QMutexLocker>
#include <QVector>

#include <cstdio>

namespace ZorvaneClient {
namespace Tests {

namespace {

QMutex mutex; // any thread may log
QVector<LogCapture *> captures;

} // namespace

LogCapture::LogCapture()
{
    const QMutexLocker locker(&mutex);
    captures.append(this);
    previous = qInstallMessageHandler(capture);
}

LogCapture::~LogCapture()
{
    const QMutexLocker locker(&mutex);
    qInstallMessageHandler(previous);
    captures.removeOne(this);
}

void LogCapture::capture(QtMsgType type, const QMessageLogContext &, const QString &text)
{
    if (type == QtFatalMsg)
        std::fprintf(stderr, "%s\n", qPrintable(text));
    const QMutexLocker locker(&mutex);
    for (LogCapture *each : captures)
        each->captured << text;
}

QStringList LogCapture::lines() const
{
    const QMutexLocker locker(&mutex);
    return captured;
}

QStringList LogCapture::linesOf(const QString &text) const
{
    QStringList result;
    for (const QString &line : lines()) {
        if (line.startsWith(text))
            result << line;
    }
    return result;
}

} // namespace Tests
} // namespace ZorvaneClient
