// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Test.h"

namespace ZorvaneClient::Tests {

/// A line of the player's output.
struct PlayerLine {
    qint64 milliseconds; ///< since the start of the process
    QByteArray text;
};

/// For the sanitizers: what a signal does is the player's own.
inline constexpr char ownSignals[] =
    "handle_segv=0:handle_sigbus=0:handle_sigfpe=0:handle_sigill=0:handle_abort=0";

/// The real player as a child process, with a frame file of its own and a ping each second.
class PlayerProcess : public QObject
{
    Q_OBJECT

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
    void setEnvironment(const char *name, const QByteArray &value)
    {
        QProcessEnvironment variables = process.processEnvironment();
        variables.insert(name, QString::fromLocal8Bit(value));
        process.setProcessEnvironment(variables);
    }
    void send(const QByteArray &command) { process.write(command + '\n'); }
    void stopPinging() { ping.stop(); }
    void closeInput() { process.closeWriteChannel(); }
    /// Before the start: the output goes there, and no lines are taken.
    void pipeInto(QProcess *reader) { process.setStandardOutputProcess(reader); }

    qint64 elapsed() const { return clock.elapsed(); }
    qint64 pid() const { return process.processId(); }
    bool isRunning() const { return process.state() != QProcess::NotRunning; }
    /// -1 while it runs or when a signal ended it.
    int exitCode() const
    {
        const bool hasCode = !isRunning() && process.exitStatus() == QProcess::NormalExit;
        return hasCode ? process.exitCode() : -1;
    }
    QByteArray errorOutput() { return process.readAllStandardError(); }

    const QVector<PlayerLine> &lines() const { return output; }
    int frames() const { return frameCount; }
    QList<int> states() const
    {
        QList<int> states;
        for (const PlayerLine &line : output) {
            if (line.text.startsWith("state "))
                states << line.text.mid(6).toInt();
        }
        return states;
    }
    int lastState() const { return states().isEmpty() ? -1 : states().last(); }
    /// Milliseconds since the start at which that state line came first, -1 if it didn't.
    qint64 timeOfState(int state) const
    {
        const QByteArray text = "state " + QByteArray::number(state);
        const auto isIt = [&text](const PlayerLine &line) { return line.text == text; };
        const auto first = std::find_if(output.begin(), output.end(), isIt);
        return first == output.end() ? -1 : first->milliseconds;
    }
    int lastTime() const { return newestTime; }
    /// Of the last size line.
    QSize size() const { return pictureSize; }
    qint64 firstFrameTime() const { return firstFrame; }

    QByteArray frameFile() const
    {
        QFile file(framePath);
        return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    }
    /// A copy of the present picture.
    QImage picture() const
    {
        const QByteArray bytes = frameFile();
        if (pictureSize.isEmpty() || bytes.isEmpty())
            return QImage();
        return QImage(reinterpret_cast<const uchar *>(bytes.constData()), pictureSize.width(),
                      pictureSize.height(), QImage::Format_ARGB32_Premultiplied)
            .copy();
    }

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

} // namespace ZorvaneClient::Tests
