// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Test.h"

namespace ZorvaneClient::Tests {

/// While it lives, takes what is logged from the console into a list. When several live, each
/// gets all lines; the youngest goes first.
class LogCapture
{
    Q_DISABLE_COPY(LogCapture)

public:
    LogCapture()
    {
        const QMutexLocker locker(&mutex);
        captures.append(this);
        previous = qInstallMessageHandler(capture);
    }
    ~LogCapture()
    {
        const QMutexLocker locker(&mutex);
        qInstallMessageHandler(previous);
        captures.removeOne(this);
    }

    QStringList lines() const
    {
        const QMutexLocker locker(&mutex);
        return captured;
    }
    /// The lines that begin with `text`.
    QStringList linesOf(const QString &text) const
    {
        return lines().filter(QRegularExpression('^' + QRegularExpression::escape(text)));
    }

private:
    static void capture(QtMsgType type, const QMessageLogContext &, const QString &text)
    {
        if (type == QtFatalMsg)
            std::fprintf(stderr, "%s\n", qPrintable(text));
        const QMutexLocker locker(&mutex);
        for (LogCapture *each : captures)
            each->captured << text;
    }

    inline static QMutex mutex; // any thread may log
    inline static QVector<LogCapture *> captures;

    QStringList captured;
    QtMessageHandler previous;
};

} // namespace ZorvaneClient::Tests
