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

App::ProxySettings proxyFor(const API::Camera &camera)
{
    return camera.kind() == API::LocalCamera ? App::ProxySettings() : App::ProxySettings::load();
}

} // namespace

void VideoWidget::setUpPlayer()
{
    d->playerProcess = QSharedPointer<QProcess>(new QProcess(this));
    connect(d->playerProcess.data(), &QProcess::started, this,
            &VideoWidget::deliverPendingCommands);
    // Queued: what is read can have the child closed, and the process tells of last words also
    // in the middle of its own noticing that the child is over. Closed there, it would wait for
    // an end that has been, for ever.
    connect(d->playerProcess.data(), &QProcess::readyReadStandardOutput, this,
            &VideoWidget::readPlayerState, Qt::QueuedConnection);
}

bool VideoWidget::play(QString url)
{
    qDebug() << "Open url:" << url;
    d->watchdog.stopped();
    clearImage();
    if (!d->camera->isOnline() || (!d->camera->isPaid() && !d->archivePlaying)) {
        showError(d->camera->statusText());
        return false;
    }
    showSpinner();
    d->url = url;
    if (d->state != TileState::Idle)
        closePlayer();
    if (d->frameFile.hasVanished()) {
        d->image = QImage();
        d->frameFile.close();
    }
    if (!d->frameFile.open()) {
        showError(d->frameFile.isTaken() ? tr("Used by another copy of the program")
                                         : tr("No video available"));
        d->watchdog.missedFile(App::Environment::now());
        emit error();
        return false;
    }
    d->state.started();
    d->playerProcess->setProgram(App::Environment::playerProgram());
    d->playerProcess->setArguments(playerArguments(url, d->frameFile.name(), proxyFor(*d->camera)));
    d->playerProcess->start(QIODevice::ReadWrite);
    d->playerProcess->waitForStarted(startTimeoutMsecs);
    d->watchdog.started(App::Environment::now());
    return true;
}

void VideoWidget::stop()
{
    d->watchdog.stopped();
    if (d->state != TileState::Idle)
        closePlayer();
    clearImage();
}

void VideoWidget::closePlayer()
{
    d->state.stopping();
    d->url.clear();
    // Closing waits until the child has taken what it was told, which one that hangs never does.
    d->playerProcess->kill();
    d->playerProcess->close();
    d->state.stopped();
}

void VideoWidget::pause()
{
    sendCommand(QStringLiteral("pause"));
    d->state.paused();
    update();
}

void VideoWidget::unpause()
{
    sendCommand(QStringLiteral("unpause"));
    d->state.unpaused();
    update();
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
    if (!d->playerProcess->isOpen())
        return; // told of before it was closed
    const QByteArray read = d->playerProcess->readAllStandardOutput();
    if (d->state == TileState::Stopping)
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
        d->videoWidth = event.size.width();
        d->videoHeight = event.size.height();
        updateAspectRatio();
        break;
    case PlayerEvent::Kind::State:
        applyVlcState(event.text);
        break;
    case PlayerEvent::Kind::Position:
        applyPosition(event.position);
        break;
    case PlayerEvent::Kind::Bad:
        qDebug() << "Bad VLC input" << event.text;
        break;
    }
}

void VideoWidget::applyVlcState(const QString &vlcState)
{
    d->vlcState = vlcState;
    const bool hasFailed = TileState::isFailure(vlcState);
    if (hasFailed && d->archivePlaying)
        stop();
    else if (hasFailed)
        d->watchdog.failed(App::Environment::now());
    d->state.told(vlcState);
    update();
}

void VideoWidget::applyPosition(int position)
{
    const int msecs = static_cast<int>(qint64(position) * d->speed);
    if (msecs <= 0)
        return;
    const qlonglong delta = msecs - d->baseTime.msecsTo(d->playbackTime);
    setTime(d->baseTime.addMSecs(msecs));
    emit msecsAdded(delta);
}

void VideoWidget::presentFrame()
{
    d->state.frame();
    if (d->state == TileState::Paused)
        pause(); // a frame that slipped out
    showPicture();
}

void VideoWidget::boundErrorOutput()
{
    // Nobody reads what the children complain about, and it must not pile up.
    for (QProcess *child : {d->playerProcess.data(), d->exportProcess.data()}) {
        child->setReadChannel(QProcess::StandardError);
        const bool isTooMuch = child->bytesAvailable() > errorOutputLimitBytes;
        child->setReadChannel(QProcess::StandardOutput);
        if (isTooMuch)
            child->readAllStandardError();
    }
}

void VideoWidget::readPlayerErrors()
{
    const QString text = QString::fromLocal8Bit(d->playerProcess->readAllStandardError());
    qDebug().noquote() << "STDERR MESSAGE FROM " + d->camera->name() + " CAMERA: " + text.trimmed();
}

} // namespace Player
} // namespace GUI
} // namespace ZorvaneClient
