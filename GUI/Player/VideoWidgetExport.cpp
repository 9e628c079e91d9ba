// SPDX-License-Identifier: MIT
// The tile's side of the export process, which writes a part of the archive into a file.
#include <QDebug>
#include <QProcess>
#include <QSignalBlocker>

#include "API/Camera.h"
#include "App/Environment.h"
#include "GUI/Player/ExportArguments.h"
#include "GUI/Player/ExportOutput.h"
#include "GUI/Player/UserFolder.h"
#include "GUI/Player/VideoWidget.h"
#include "GUI/Player/VideoWidgetPrivate.h"

namespace ZorvaneClient {
namespace GUI {
namespace Player {

using namespace Internal;

namespace {

/// How long the child may take to remove what it has written.
constexpr int cleanUpTimeoutMsecs = 1000;

} // namespace

void VideoWidget::setUpExport()
{
    d->exportProcess = QSharedPointer<QProcess>(new QProcess(this));
    connect(d->exportProcess.data(), &QProcess::readyReadStandardOutput, this,
            &VideoWidget::readExportMessages);
}

void VideoWidget::exportFragment(QDateTime start, QDateTime end)
{
    const qint64 msecs = recordedMsecs(d->camera->records(start.date()), start, end);
    if (msecs == 0)
        return;
    // The one before may have ended since the last tick.
    if (!isExporting())
        logFailedExport();
    const QDir folder = userFolder(QStandardPaths::MoviesLocation);
    d->exportPath = folder.absoluteFilePath(exportFileName(*d->camera, start, end));
    d->exportProcess->start(App::Environment::playerProgram(),
                            exportArguments(*d->camera, start, end, msecs, d->exportPath),
                            QIODevice::ReadWrite);
    d->exportIsOpen = true;
}

bool VideoWidget::isExporting() const
{
    return d->exportProcess->state() != QProcess::NotRunning;
}

void VideoWidget::noticeEndOfExport()
{
    if (!d->exportIsOpen || isExporting())
        return;
    logFailedExport();
    // It has shown nothing so far, and never will.
    if (d->exportProcess->error() == QProcess::FailedToStart)
        emit exportError(d->exportPath);
}

void VideoWidget::logFailedExport()
{
    if (!d->exportIsOpen)
        return;
    d->exportIsOpen = false;
    const QProcess &child = *d->exportProcess;
    QString reason = exportComplaint(d->exportProcess->readAllStandardError());
    if (child.error() == QProcess::FailedToStart)
        reason = child.errorString();
    else if (reason.isEmpty() && child.exitStatus() == QProcess::CrashExit)
        reason = QStringLiteral("the player was killed");
    else if (reason.isEmpty())
        reason = QStringLiteral("the player ended with exit code %1").arg(child.exitCode());
    qWarning() << "Cannot export" << d->exportPath << ":" << reason;
}

void VideoWidget::cancelExport()
{
    if (!isExporting()) {
        logFailedExport();
        return;
    }
    d->exportIsOpen = false;
    // Its last words are nobody's business.
    const QSignalBlocker blocker(d->exportProcess.data());
    // Closing the process kills it. A child that is told by its standard input removes the file
    // it was at, and then there is nothing left to kill.
    d->exportProcess->closeWriteChannel();
    if (!d->exportProcess->waitForFinished(cleanUpTimeoutMsecs))
        d->exportProcess->kill();
    d->exportProcess->close();
}

void VideoWidget::readExportMessages()
{
    const QVector<ExportEvent> events = exportEvents(d->exportProcess->readAllStandardOutput());
    for (const ExportEvent &event : events) {
        switch (event.kind) {
        case ExportEvent::Kind::Started:
            emit exportStarted();
            break;
        case ExportEvent::Kind::Percent:
            emit exportPercentDone(event.percent);
            break;
        case ExportEvent::Kind::Error:
            emit exportError(d->exportPath);
            break;
        case ExportEvent::Kind::Done:
            d->exportIsOpen = false;
            emit exportDone(d->exportPath);
            break;
        case ExportEvent::Kind::Bad:
            qDebug() << "Bad VLC input" << event.line;
            break;
        }
    }
}

} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
