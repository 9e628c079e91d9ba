// SPDX-License-Identifier: MIT
#pragma once

#include <QElapsedTimer>
#include <QImage>
#include <QProcess>
#include <QTimer>
#include <QVector>

namespace ZorvaneClient {
namespace Tests {

/// A line of the player's output.
struct PlayerLine {
    qint64 milliseconds; ///< since the start of the process
    QByteArray text;
};

/// The real player as a child process, with a frame file of its own and a ping each second.
class PlayerProcess : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(PlayerProcess)

public:
    static constexpr int frameFileBytes = 12'582'912;
    /// What stands in the frame file before the first picture.
    static constexpr char untouched = 0x5A;

    PlayerProcess();
    /// Kills the child if it still runs, and removes the frame file.
    ~PlayerProcess() override;

    /// Starts the player on `url` with the frame file's name and `more` after them.
    bool start(const QByteArray &url, const QList<QByteArray> &more = {});
    bool startWithArguments(const QList<QByteArray> &arguments);
    void setEnvironment(const char *name, const QByteArray &value);
    void send(const QByteArray &command) { process.write(command + '\n'); }
    void stopPinging() { ping.stop(); }
    void closeInput() { process.closeWriteChannel(); }
    /// Before the start: the output goes there, and no lines are taken.
    void pipeInto(QProcess *reader) { process.setStandardOutputProcess(reader); }

    qint64 elapsed() const { return clock.elapsed(); }
    qint64 pid() const { return process.processId(); }
    bool isRunning() const { return process.state() != QProcess::NotRunning; }
    /// -1 while it runs or when a signal ended it.
    int exitCode() const;
    QByteArray errorOutput() { return process.readAllStandardError(); }

    const QVector<PlayerLine> &lines() const { return output; }
    int frames() const { return frameCount; }
    QList<int> states() const;
    int lastState() const { return states().isEmpty() ? -1 : states().last(); }
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
    void readLines();

    QProcess process;
    QTimer ping;
    QElapsedTimer clock;
    QString framePath;
    QVector<PlayerLine> output;
    int frameCount = 0;
    int newestTime = -1;
    qint64 firstFrame = -1;
    QSize pictureSize;
};

} // namespace Tests
} // namespace ZorvaneClient
