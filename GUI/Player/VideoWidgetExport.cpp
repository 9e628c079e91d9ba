// SPDX-License-Identifier: MIT
// The tile's side of the export process, which writes a part of the archive into a file.
#include <QDebug>
#include <QDir>
#include <QProcess>
#include <QSignalBlocker>
#include <QStandardPaths>

#include "API/Camera.h"
#include "App/Environment.h"
#include "GUI/Player/ExportArguments.h"
#include "GUI/Player/ExportOutput.h"
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
    const QDir folder(QStandardPaths::writableLocation(QStandardPaths::MoviesLocation));
    d->exportPath = folder.absoluteFilePath(exportFileName(*d->camera, start, end));
    d->exportProcess->start(App::Environment::playerProgram(),
                            exportArguments(*d->camera, start, end, msecs, d->exportPath),
                            QIODevice::ReadWrite);
}

bool VideoWidget::isExporting() const
{
    return d->exportProcess->state() != QProcess::NotRunning;
}

void VideoWidget::cancelExport()
{
    if (!isExporting())
        return;
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
