// SPDX-License-Identifier: MIT
// The tile's side of the child process: start and end, commands, output.
#include <QDebug>
#include <QProcess>

#include "API/Camera.h"
#include "App/Environment.h"
#include "GUI/Player/PlayerArguments.h"
#include "GUI/Player/PlayerOutput.h"
#include "GUI/Player/VideoWidget.h"
#include "GUI/Player/VideoWidgetPrivate.h"

namespace ZorvaneClient {
namespace GUI {
namespace Player {

using namespace Internal;

namespace {

constexpr int startTimeoutMsecs = 30000;
constexpr qint64 errorOutputLimitBytes = 65536;

// What the child reports, as libVLC numbers its states.
constexpr QLatin1String vlcPaused("4");
constexpr QLatin1String vlcError("7");

App::ProxySettings proxyFor(const API::Camera &camera)
{
    return camera.kind() == API::LocalCamera ? App::ProxySettings() : App::ProxySettings::load();
}

} // namespace

void VideoWidget::setUpPlayer()
{
    d->playerProcess = QSharedPointer<QProcess>(new QProcess(this));
    connect(d->playerProcess.data(), &QProcess::started, this,
            [this] { deliverPendingCommands(); });
    connect(d->playerProcess.data(), &QProcess::readyReadStandardOutput, this,
            &VideoWidget::readPlayerState);
}

bool VideoWidget::play(QString url)
{
    qDebug() << "Open url:" << url;
    clearImage();
    if (!d->camera->isOnline() || (!d->camera->isPaid() && !d->archivePlaying)) {
        showError(d->camera->statusText());
        return false;
    }
    showSpinner();
    d->url = url;
    if (d->state != Idle)
        closePlayer();
    if (!d->frameFile.open()) {
        emit error();
        return false;
    }
    d->state = Starting;
    d->playerProcess->setProgram(App::Environment::playerProgram());
    d->playerProcess->setArguments(playerArguments(url, d->frameFile.name(), proxyFor(*d->camera)));
    d->playerProcess->start(QIODevice::ReadWrite);
    d->playerProcess->waitForStarted(startTimeoutMsecs);
    d->watchdog.started(App::Environment::now());
    return true;
}

void VideoWidget::stop()
{
    if (d->state != Idle)
        closePlayer();
    clearImage();
}

void VideoWidget::closePlayer()
{
    d->state = Stopping;
    d->url.clear();
    // Closing waits until the child has taken what it was told, which one that hangs never does.
    d->playerProcess->kill();
    d->playerProcess->close();
    d->state = Idle;
}

void VideoWidget::pause()
{
    sendCommand(QStringLiteral("pause"));
    d->state = Paused;
}

void VideoWidget::unpause()
{
    sendCommand(QStringLiteral("unpause"));
    d->state = Playing;
}

void VideoWidget::setSoundVolume(int volume)
{
    d->volume = volume;
    sendVolume();
}

void VideoWidget::enableSound(bool enable)
{
    d->soundEnabled = enable;
    sendVolume();
}

void VideoWidget::sendVolume()
{
    sendCommand(QStringLiteral("volume %1").arg(d->effectiveVolume()));
}

void VideoWidget::sendCommand(const QString &command)
{
    if (!d->childRuns()) {
        d->pendingCommands.append(command);
        return;
    }
    d->playerProcess->write(command.toLatin1());
    d->playerProcess->write("\n");
}

void VideoWidget::deliverPendingCommands()
{
    const QStringList commands = d->pendingCommands;
    for (const QString &command : commands)
        sendCommand(command);
    d->pendingCommands.clear();
    sendVolume();
}

void VideoWidget::readPlayerState()
{
    const QByteArray read = d->playerProcess->readAllStandardOutput();
    if (d->state == Stopping)
        return; // the last words of a child that is being ended
    const PlayerOutput output = PlayerOutput::parse(read);
    for (const PlayerEvent &event : output.events)
        applyPlayerEvent(event);
    if (output.frames > 0)
        presentFrame();
}

void VideoWidget::applyPlayerEvent(const PlayerEvent &event)
{
    switch (event.kind) {
    case PlayerEvent::Kind::Size:
        d->videoWidth = event.width;
        d->videoHeight = event.height;
        updateAspectRatio();
        break;
    case PlayerEvent::Kind::State:
        applyVlcState(event.text);
        break;
    case PlayerEvent::Kind::Position:
        applyPosition(event.text);
        break;
    case PlayerEvent::Kind::Bad:
        qDebug() << "Bad VLC input" << event.text;
        break;
    }
}

void VideoWidget::applyVlcState(const QString &vlcState)
{
    d->vlcState = vlcState;
    if (vlcState == vlcError) {
        if (d->archivePlaying)
            stop();
        else
            d->watchdog.freezeTime = App::Environment::now();
        d->state = Error;
    } else if (vlcState == vlcPaused) {
        d->state = Paused;
    }
}

void VideoWidget::applyPosition(const QString &text)
{
    bool isNumber = false;
    const qint64 position = text.toInt(&isNumber);
    const int msecs = static_cast<int>(position * d->speed);
    if (!isNumber || msecs <= 0)
        return;
    const qlonglong delta = msecs - d->baseTime.msecsTo(d->playbackTime);
    setTime(d->baseTime.addMSecs(msecs));
    emit msecsAdded(delta);
}

void VideoWidget::presentFrame()
{
    if (d->state == Starting)
        d->state = Playing;
    else if (d->state == Paused)
        pause(); // a frame that slipped out
    hideSpinner();
    const QSize size = d->streamSize();
    if (!FrameFile::hasRoomFor(size) && d->refusedSize != size) {
        d->refusedSize = size;
        qWarning() << "VideoWidget: No frame of" << d->videoWidth << "x" << d->videoHeight
                   << "pixels can be shown";
    }
    d->image = d->frameFile.image(size);
    d->hasPicture = true;
    update();
}

void VideoWidget::boundErrorOutput()
{
    // Nobody reads what a child complains about, and it must not pile up.
    d->playerProcess->setReadChannel(QProcess::StandardError);
    const bool isTooMuch = d->playerProcess->bytesAvailable() > errorOutputLimitBytes;
    d->playerProcess->setReadChannel(QProcess::StandardOutput);
    if (isTooMuch)
        d->playerProcess->readAllStandardError();
}

void VideoWidget::readPlayerErrors()
{
    const QString text = QString::fromLocal8Bit(d->playerProcess->readAllStandardError());
    qDebug().noquote() << "STDERR MESSAGE FROM " + d->camera->name() + " CAMERA: " + text.trimmed();
}

} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
