// SPDX-License-Identifier: MIT
#include "App/Log.h"

#include <QDateTime>
#include <QDebug>
#include <QFile>
#include <QMutex>
#include <QMutexLocker>
#include <QTextStream>

#include <cstdlib>

#include "App/OwnerOnly.h"
#include "App/QtShims.h"

namespace ZorvaneClient {
namespace App {

namespace {

// File and stream live until the process ends; the handler may be called up to then.
QFile *logFile = nullptr;
QTextStream *logStream = nullptr;
QMutex logMutex;
QtMessageHandler previousHandler = nullptr;

void writeLine(const char *level, const QString &line)
{
    // A newline and a flush: each line is on disk at once.
    *logStream << level << line << '\n';
    logStream->flush();
}

void handleMessage(QtMsgType type, const QMessageLogContext &context, const QString &text)
{
    if (previousHandler)
        previousHandler(type, context, text);
    // Not the program's clock, which is the GUI thread's; messages come from any.
    const QString line =
        QDateTime::currentDateTime().toString(QStringLiteral("dd.MM.yyyy hh:mm::ss.zzz ")) + text;
    QMutexLocker locker(&logMutex);
    switch (type) {
    case QtDebugMsg:
        writeLine("", line);
        break;
    case QtWarningMsg:
        writeLine("Warning: ", line);
        break;
    case QtCriticalMsg:
        writeLine("Critical: ", line);
        break;
    case QtFatalMsg:
        writeLine("Fatal: ", line);
        abort();
    default:
        break;
    }
}

} // namespace

void openLog()
{
    const QString path = QStringLiteral("zorvane_client_log.txt");
    qDebug() << "LogPath:" << path;
    logFile = new QFile(path);
    // Addresses of streams hold sessions and passwords.
    const OwnerOnlyFiles guard;
    restrictToOwner(path);
    if (!logFile->open(QIODevice::WriteOnly))
        qFatal("Cannot open log file");
    logStream = new QTextStream(logFile);
    useUtf8(logStream);
    previousHandler = qInstallMessageHandler(handleMessage);
}

} // namespace App
} // namespace ZorvaneClient
