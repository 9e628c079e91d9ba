// SPDX-License-Identifier: MIT
#pragma once

#include <QByteArray>
#include <QElapsedTimer>
#include <QImage>
#include <QObject>
#include <QSize>
#include <QSocketNotifier>
#include <QStringList>
#include <QTimer>
#include <QVector>

#include <memory>

namespace ZorvaneClient {
namespace Tests {

/// A line of the player's output.
struct PlayerLine {
    qint64 milliseconds; ///< since the start of the process
    int write;           ///< which write to the pipe brought it
    QByteArray text;
};

/// The real player as a child process, with a frame file of its own and a ping each second.
/// Its output goes through a pipe that keeps the writes apart.
class PlayerProcess : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(PlayerProcess)

public:
    static constexpr int frameFileBytes = 12'582'912;
    /// What stands in the frame file before the first picture.
    static constexpr char untouched = 0x5A;

    explicit PlayerProcess(QObject *parent = nullptr);
    /// Kills the child if it still runs, and removes the frame file.
    ~PlayerProcess() override;

    /// Starts the player on `url` with the frame file's name and `more` after them.
    bool start(const QByteArray &url, const QList<QByteArray> &more = {});
    bool startWithArguments(const QList<QByteArray> &arguments);
    void send(const QByteArray &command);
    void stopPinging() { ping.stop(); }
    void closeInput();
    void closeOutput();
    /// Lets the output pile up in the pipe, or reads on.
    void setReading(bool reading);
    void setEnvironment(const QByteArray &name, const QByteArray &value);

    qint64 pid() const { return child; }
    qint64 elapsed() const { return clock.elapsed(); }
    bool isRunning();
    /// -1 while it runs or when a signal ended it.
    int exitCode();
    /// Signal that ended it, 0 if none did.
    int exitSignal();
    /// Processor time of the whole life, known after the end.
    double cpuMilliseconds();

    const QVector<PlayerLine> &lines() const { return output; }
    QByteArray errorOutput();
    int frames() const { return frameCount; }
    QList<int> states() const;
    int lastState() const;
    /// Milliseconds since the start at which that state line came first, -1 if it didn't.
    qint64 timeOfState(int state) const;
    int lastTime() const { return newestTime; }
    /// Of the last size line.
    QSize size() const { return pictureSize; }
    qint64 firstFrameTime() const { return firstFrame; }

    QString frameFilePath() const { return framePath; }
    QByteArray frameFile() const;
    /// A copy of the present picture.
    QImage picture() const;

signals:
    void frameShown();

private:
    bool makeFrameFile();
    bool spawn(const QList<QByteArray> &arguments);
    void readOutput();
    void takeLine(const QByteArray &line);
    void reap();

    qint64 child = -1;
    int inputFd = -1;
    int outputFd = -1;
    int errorFd = -1;
    std::unique_ptr<QSocketNotifier> notifier;
    QTimer ping;
    QElapsedTimer clock;
    QString framePath;
    QList<QByteArray> environment;

    QVector<PlayerLine> output;
    int writes = 0;
    int frameCount = 0;
    int newestTime = -1;
    qint64 firstFrame = -1;
    QSize pictureSize;

    bool reaped = false;
    int waitStatus = 0;
    double cpu = 0;
};

} // namespace Tests
} // namespace ZorvaneClient
