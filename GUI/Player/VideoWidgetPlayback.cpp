// SPDX-License-Identifier: MIT
// What a tile plays, from which moment, and when it tries again.
#include <QDebug>
#include <QTimer>

#include <algorithm>
#include <chrono>

#include "API/ArchiveRecord.h"
#include "API/Camera.h"
#include "App/Environment.h"
#include "GUI/Player/VideoWidget.h"
#include "GUI/Player/VideoWidgetPrivate.h"
#include "ui_VideoWidget.h"

namespace ZorvaneClient {
namespace GUI {
namespace Player {

using namespace Internal;
using namespace std::chrono_literals;

namespace {

const QLatin1String clockFormat("hh:mm:ss");

} // namespace

void VideoWidget::setTime(QDateTime dateTime)
{
    d->playbackTime = dateTime;
    ui->cameraTime->setText(dateTime.toString(clockFormat));
}

bool VideoWidget::playLive()
{
    d->archivePlaying = false;
    d->baseTime = App::Environment::now();
    setTime(d->baseTime);
    if (d->camera->isLiveShared())
        return play(d->camera->liveUrl(d->quality));
    stop();
    showError(tr("Live is not shared"));
    return false;
}

bool VideoWidget::playArchive(QDateTime start, QDateTime end, int speed)
{
    d->speed = speed;
    d->archivePlaying = true;
    d->baseTime = start;
    d->endTime = end;
    setTime(start);
    if (d->camera->isArchiveShared()) {
        return play(d->camera->archiveUrl(d->quality, speed, API::toEpochSeconds(start),
                                          API::toEpochSeconds(end)));
    }
    stop();
    showError(tr("Archive is not shared"));
    return false;
}

bool VideoWidget::playArchive(QDateTime start, QDateTime end)
{
    return playArchive(start, end, 1);
}

bool VideoWidget::playArchive(QDateTime start, int speed)
{
    const QList<API::ArchiveRecord> records = d->camera->records(start.date());
    const auto record =
        std::find_if(records.begin(), records.end(), [&start](const API::ArchiveRecord &candidate) {
            return start < candidate.end;
        });
    if (record != records.end() && start >= record->start)
        return playArchive(start, record->end, speed);
    showError(tr("No records"));
    return false;
}

bool VideoWidget::playArchive(QDateTime start)
{
    return playArchive(start, 1);
}

void VideoWidget::setArchiveMode(bool archivePlaying)
{
    d->archivePlaying = archivePlaying;
}

void VideoWidget::takeQuality(int quality)
{
    if (quality >= API::LowQuality && quality <= API::HighQuality)
        d->quality = quality;
}

void VideoWidget::setQuality(int quality)
{
    const int before = d->quality;
    takeQuality(quality);
    if (d->quality == before)
        return;
    if (!d->archivePlaying)
        playLive();
    else if (isPlaying())
        playArchive(d->playbackTime, d->endTime, d->speed);
}

void VideoWidget::onFlagsChanged()
{
    if (d->archivePlaying)
        return;
    if (d->camera->isOnline() && d->camera->isPaid()) {
        playLive();
        return;
    }
    stop();
    showError(d->camera->statusText());
}

void VideoWidget::timerEvent(QTimerEvent *)
{
    noticeEndOfExport();
    boundErrorOutput();
    const bool childRuns = d->childRuns();
    if (childRuns)
        sendCommand(QStringLiteral("ping"));
    const QDateTime now = App::Environment::now();
    switch (d->watchdog.judge(d->state, d->archivePlaying, childRuns, now)) {
    case Watchdog::Verdict::Wait:
        break;
    case Watchdog::Verdict::Play:
        playLive();
        break;
    case Watchdog::Verdict::Reload:
        reloadByTimer();
        break;
    case Watchdog::Verdict::GiveUp:
        stop();
        showError(tr("No video available"));
        QTimer::singleShot(Watchdog::retryDelay, this, &VideoWidget::playLive);
        break;
    }
}

void VideoWidget::reloadByTimer()
{
    const int reloadsCount = d->watchdog.reloadsCount + 1;
    qDebug() << "Camera" << d->camera->name()
             << "freezed and reload by timer. Reloads count:" << reloadsCount;
    playLive();
    d->watchdog.reloaded(reloadsCount); // playLive() has begun to count anew
}

} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
