// SPDX-License-Identifier: MIT
#include "tests/support/PlayerProcess.h"

namespace ZorvaneClient::Tests {

PlayerProcess::PlayerProcess()
{
    static int counter = 0;
    framePath = QDir::tempPath() + "/zorvane-player-" + QString::number(++counter);
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
    file.close();
    return startWithArguments(QList<QByteArray>{url, QFileInfo(file).fileName().toUtf8()} + more);
}

bool PlayerProcess::startWithArguments(const QList<QByteArray> &arguments)
{
    QStringList texts;
    for (const QByteArray &argument : arguments)
        texts << QString::fromLocal8Bit(argument);
    clock.start();
    process.start(ZORVANE_BIN_DIR "/vlc-stream", texts);
    ping.start(1000);
    return process.waitForStarted();
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

} // namespace ZorvaneClient::Tests
