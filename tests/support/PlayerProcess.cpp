// SPDX-License-Identifier: MIT
#include "tests/support/PlayerProcess.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QProcessEnvironment>

namespace ZorvaneClient {
namespace Tests {

namespace {

constexpr int pingMilliseconds = 1000;

} // namespace

PlayerProcess::PlayerProcess()
{
    static int counter = 0;
    framePath = QDir::tempPath() + QStringLiteral("/zorvane-player-%1").arg(++counter);
    process.setProcessEnvironment(QProcessEnvironment::systemEnvironment());
    connect(&process, &QProcess::readyReadStandardOutput, this, &PlayerProcess::readLines);
    connect(&ping, &QTimer::timeout, this, [this] { send("ping"); });
}

PlayerProcess::~PlayerProcess()
{
    process.disconnect(this);
    process.kill();
    process.waitForFinished();
    QFile::remove(framePath);
}

bool PlayerProcess::start(const QByteArray &url, const QList<QByteArray> &more)
{
    QFile file(framePath);
    if (!file.open(QIODevice::WriteOnly) ||
        file.write(QByteArray(frameFileBytes, untouched)) != frameFileBytes)
        return false;
    return startWithArguments(QList<QByteArray>{url, QFileInfo(framePath).fileName().toUtf8()} +
                              more);
}

bool PlayerProcess::startWithArguments(const QList<QByteArray> &arguments)
{
    QStringList texts;
    for (const QByteArray &argument : arguments)
        texts.append(QString::fromLocal8Bit(argument));
    clock.start();
    process.start(QStringLiteral(ZORVANE_BIN_DIR "/vlc-stream"), texts);
    ping.start(pingMilliseconds);
    return process.waitForStarted();
}

void PlayerProcess::setEnvironment(const char *name, const QByteArray &value)
{
    QProcessEnvironment variables = process.processEnvironment();
    variables.insert(QString::fromLatin1(name), QString::fromLocal8Bit(value));
    process.setProcessEnvironment(variables);
}

int PlayerProcess::exitCode() const
{
    return isRunning() || process.exitStatus() != QProcess::NormalExit ? -1 : process.exitCode();
}

QList<int> PlayerProcess::states() const
{
    QList<int> states;
    for (const PlayerLine &line : output) {
        if (line.text.startsWith("state "))
            states.append(line.text.mid(6).toInt());
    }
    return states;
}

qint64 PlayerProcess::timeOfState(int state) const
{
    const QByteArray text = "state " + QByteArray::number(state);
    for (const PlayerLine &line : output) {
        if (line.text == text)
            return line.milliseconds;
    }
    return -1;
}

QByteArray PlayerProcess::frameFile() const
{
    QFile file(framePath);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

QImage PlayerProcess::picture() const
{
    QFile file(framePath);
    if (pictureSize.isEmpty() || !file.open(QIODevice::ReadOnly))
        return QImage();
    const QByteArray bytes = file.read(qint64(4) * pictureSize.width() * pictureSize.height());
    return QImage(reinterpret_cast<const uchar *>(bytes.constData()), pictureSize.width(),
                  pictureSize.height(), QImage::Format_ARGB32_Premultiplied)
        .copy();
}

void PlayerProcess::readLines()
{
    while (process.canReadLine()) {
        const QByteArray line = process.readLine().chopped(1);
        output.append({clock.elapsed(), line});
        const QList<QByteArray> words = line.split(' ');
        if (words.first() == "size") {
            pictureSize = QSize(words.value(1).toInt(), words.value(2).toInt());
        } else if (words.first() == "time") {
            newestTime = words.value(1).toInt();
        } else if (words.first() == "frame") {
            if (frameCount++ == 0)
                firstFrame = clock.elapsed();
            emit frameShown();
        }
    }
}

} // namespace Tests
} // namespace ZorvaneClient
