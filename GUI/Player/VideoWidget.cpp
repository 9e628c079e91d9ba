// SPDX-License-Identifier: MIT
#include "GUI/Player/VideoWidget.h"

#include <QAction>
#include <QDebug>
#include <QDir>
#include <QMenu>
#include <QPalette>
#include <QStandardPaths>
#include <QTimer>
#include <QTimerEvent>

#include <chrono>

#include "API/Camera.h"
#include "App/Environment.h"
#include "GUI/CameraSettingsDialog.h"
#include "GUI/Player/DoubleClickFilter.h"
#include "GUI/Player/TilePainter.h"
#include "GUI/Player/VideoWidgetPrivate.h"
#include "ui_VideoWidget.h"

namespace ZorvaneClient {
namespace GUI {
namespace Player {

using namespace Internal;
using namespace std::chrono_literals;

namespace {

constexpr std::chrono::milliseconds tickInterval = 2s;
constexpr std::chrono::milliseconds retryDelay = 30s;

constexpr QLatin1String clockFormat("hh:mm:ss");
constexpr QLatin1String snapshotStampFormat("dd_MM_yy_hh_mm_ss");

} // namespace

VideoWidget::VideoWidget(API::CameraPtr camera, QWidget *parent)
    : QWidget(parent), ui(new Ui::VideoWidget), d(new VideoWidgetPrivate)
{
    d->camera = camera ? camera : API::CameraPtr::create();
    ui->setupUi(this);
    QPalette colors = palette();
    colors.setColor(QPalette::Window, tileBackground);
    setPalette(colors);
    setAttribute(Qt::WA_OpaquePaintEvent); // paintEvent() fills what the picture leaves free

    setUpPlayer();
    setUpExport();
    setUpBars();
    setCameraName(d->camera->name());
    setTime(App::Environment::now());
    hideSpinner();

    connect(d->camera.data(), &API::Camera::orientationChanged, this,
            &VideoWidget::orientationChanged);
    connect(d->camera.data(), &API::Camera::flagsChanged, this, &VideoWidget::onFlagsChanged);
    startTimer(static_cast<int>(tickInterval.count()), Qt::CoarseTimer);
}

VideoWidget::~VideoWidget()
{
    if (d->playerProcess->state() != QProcess::NotRunning)
        stop();
    cancelExport();
}

void VideoWidget::setUpBars()
{
    auto *filter = new DoubleClickFilter(this);
    ui->topBar->installEventFilter(filter);
    filter = new DoubleClickFilter(this);
    ui->bottomBar->installEventFilter(filter);

    auto *menu = new QMenu(ui->settingsButton);
    menu->addAction(ui->actionSettings);
    menu->addAction(ui->actionClose);
    menu->installEventFilter(this);
    ui->settingsButton->setMenu(menu);
    showBars(false);
}

API::CameraPtr VideoWidget::camera() const
{
    return d->camera;
}

API::LayoutPoint VideoWidget::position() const
{
    return API::LayoutPoint{d->column, d->row};
}

API::CellSize VideoWidget::span() const
{
    return API::CellSize{d->columnSpan, d->rowSpan};
}

QDateTime VideoWidget::playbackTime() const
{
    return d->playbackTime;
}

bool VideoWidget::isPlaying() const
{
    return d->state.isPlaying(d->archivePlaying);
}

bool VideoWidget::isPaused() const
{
    return d->state == TileState::Paused;
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
        return play(
            d->camera->archiveUrl(d->quality, speed, toEpochSeconds(start), toEpochSeconds(end)));
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
    for (const API::ArchiveRecord &record : records) {
        if (start >= record.end)
            continue;
        if (start < record.start)
            break;
        return playArchive(start, record.end, speed);
    }
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

void VideoWidget::setTime(QDateTime dateTime)
{
    d->playbackTime = dateTime;
    ui->cameraTime->setText(dateTime.toString(clockFormat));
}

void VideoWidget::setCameraName(QString name)
{
    ui->cameraName->setText(name);
}

void VideoWidget::setActive(bool isActive)
{
    d->isActive = isActive;
    update();
}

void VideoWidget::setPosition(int row, int column)
{
    d->row = row;
    d->column = column;
}

void VideoWidget::setSpan(int rowSpan, int columnSpan)
{
    d->rowSpan = rowSpan;
    d->columnSpan = columnSpan;
}

void VideoWidget::setQuality(int quality)
{
    if (quality < 0 || quality > highestQuality || quality == d->quality)
        return;
    d->quality = quality;
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
    boundErrorOutput();
    const bool childRuns = d->childRuns();
    if (childRuns)
        sendCommand(QStringLiteral("ping"));
    const QDateTime now = App::Environment::now();
    switch (d->watchdog.judge(d->state, d->archivePlaying, childRuns, now)) {
    case Watchdog::Verdict::Wait:
        break;
    case Watchdog::Verdict::Reload:
        reloadByTimer();
        break;
    case Watchdog::Verdict::GiveUp:
        stop();
        showError(tr("No video available"));
        QTimer::singleShot(retryDelay, this, &VideoWidget::playLive);
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

void VideoWidget::showSpinner()
{
    d->errorText.clear();
    clearImage();
    ui->spinnerWidget->start();
    ui->spinnerWidget->show();
}

void VideoWidget::hideSpinner()
{
    ui->spinnerWidget->stop();
    ui->spinnerWidget->hide();
    d->errorText.clear();
}

void VideoWidget::showError(const QString &text)
{
    ui->spinnerWidget->stop();
    ui->spinnerWidget->hide();
    d->errorText = text;
    clearImage();
}

void VideoWidget::clearImage()
{
    d->image.fill(tileBackground);
    d->hasPicture = false;
    update();
}

void VideoWidget::dumpState() const
{
    qDebug() << "Activated camera:" << d->camera->name() << "state:" << d->state.name()
             << "last request time:" << d->watchdog.lastRequestTime
             << "freeze time:" << d->watchdog.freezeTime
             << "reloads count:" << d->watchdog.reloadsCount << "is archive playing?"
             << d->archivePlaying << "VLC state:" << d->vlcState << "volume:" << d->volume
             << "quality:" << d->quality << "resolution:" << d->videoWidth << "x" << d->videoHeight
             << "playback time:" << d->playbackTime << "base time:" << d->baseTime;
}

void VideoWidget::on_closeButton_clicked()
{
    emit closed(this);
}

void VideoWidget::on_actionClose_triggered()
{
    emit closed(this);
}

void VideoWidget::on_actionSettings_triggered()
{
    // Later: the tile can go while the dialog is open, and the menu that is at work with it.
    QTimer::singleShot(0, this, [camera = d->camera] { CameraSettingsDialog::editCamera(camera); });
}

void VideoWidget::on_cameraScreenshotButton_clicked()
{
    const QDir folder(QStandardPaths::writableLocation(QStandardPaths::PicturesLocation));
    const QString name = d->camera->name() + QLatin1Char('-') +
                         d->playbackTime.toString(snapshotStampFormat) + QLatin1String(".png");
    d->image.save(folder.absoluteFilePath(name));
    emit snapshotSaved(folder.absolutePath());
}

} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
