// SPDX-License-Identifier: MIT
#include "GUI/Player/VideoWidget.h"

#include <QDebug>
#include <QPalette>
#include <QTimer>

#include <chrono>

#include "API/Camera.h"
#include "App/Environment.h"
#include "GUI/CameraSettingsDialog.h"
#include "GUI/Colours.h"
#include "GUI/Player/UserFolder.h"
#include "GUI/Player/VideoWidgetPrivate.h"
#include "ui_VideoWidget.h"

namespace ZorvaneClient {
namespace GUI {
namespace Player {

using namespace Internal;
using namespace std::chrono_literals;

namespace {

constexpr std::chrono::milliseconds tickInterval = 2s;

const QLatin1String snapshotStampFormat("dd_MM_yy_hh_mm_ss");

} // namespace

VideoWidget::VideoWidget(API::CameraPtr camera, QWidget *parent)
    : QWidget(parent), ui(new Ui::VideoWidget), d(new VideoWidgetPrivate)
{
    d->camera = camera ? camera : API::CameraPtr::create();
    ui->setupUi(this);
    QPalette colours = palette();
    colours.setColor(QPalette::Window, Colours::tile());
    setPalette(colours);
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
    startTimer(tickInterval);
}

VideoWidget::~VideoWidget()
{
    if (d->playerProcess->state() != QProcess::NotRunning)
        stop();
    cancelExport();
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

int VideoWidget::quality() const
{
    return d->quality;
}

bool VideoWidget::isActive() const
{
    return d->isActive;
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
    const QDir folder = userFolder(QStandardPaths::PicturesLocation);
    const QString name = d->camera->name() + QLatin1Char('-') +
                         d->playbackTime.toString(snapshotStampFormat) + QLatin1String(".png");
    const QString path = folder.absoluteFilePath(name);
    const QString failure = writePicture(d->image, path);
    if (!failure.isEmpty())
        qWarning() << "Cannot save snapshot" << path << ":" << failure;
    emit snapshotSaved(folder.absolutePath());
}

} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
