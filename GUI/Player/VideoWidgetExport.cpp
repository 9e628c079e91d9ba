// SPDX-License-Identifier: MIT
// The tile's side of the export process, which writes a part of the archive into a file.
#include <QDebug>
#include <QDir>
#include <QProcess>
#include <QSignalBlocker>
#include <QStandardPaths>

#include "API/Camera.h"
#include "App/Environment.h"
#include "GUI/Player/ArchiveFragment.h"
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
    // Nobody reads what the child complains about, and it must not pile up.
    d->exportProcess->setStandardErrorFile(QProcess::nullDevice());
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
    const QByteArray read = d->exportProcess->readAllStandardOutput();
    const QString text = QString::fromLatin1(read.constData()); // up to the first NUL
    bool isDone = false;
    const QStringList lines = text.trimmed().split(QLatin1Char('\n'));
    for (const QString &line : lines) {
        const QStringList tokens = line.trimmed().split(QLatin1Char(' '));
        const QString &word = tokens.first();
        if (word == QLatin1String("export-done"))
            isDone = true;
        else if (word == QLatin1String("export-error"))
            emit exportError(d->exportPath);
        else if (word == QLatin1String("export-start"))
            emit exportStarted();
        else if (word != QLatin1String("export-percent"))
            continue;
        else if (tokens.size() < 2)
            qDebug() << "Bad VLC input" << line.trimmed();
        else
            emit exportPercentDone(tokens.at(1).toInt());
    }
    if (isDone)
        emit exportDone(d->exportPath);
}

} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
