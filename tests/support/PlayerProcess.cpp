// SPDX-License-Identifier: MIT
#include "tests/support/PlayerProcess.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QMap>

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <cstring>
#include <vector>

extern char **environ;

namespace ZorvaneClient {
namespace Tests {

namespace {

constexpr int pingMilliseconds = 1000;
/// A pipe that keeps writes apart spends a page on each.
constexpr int pipeBytes = 1024 * 1024;
constexpr int maxWriteBytes = 4096;

QMap<QByteArray, QByteArray> currentEnvironment()
{
    QMap<QByteArray, QByteArray> variables;
    for (char **entry = environ; *entry; ++entry) {
        const QByteArray text(*entry);
        const int equals = static_cast<int>(text.indexOf('='));
        variables.insert(text.left(equals), text.mid(equals + 1));
    }
    return variables;
}

std::vector<char *> pointersTo(QList<QByteArray> &texts)
{
    std::vector<char *> pointers;
    for (QByteArray &text : texts)
        pointers.push_back(text.data());
    pointers.push_back(nullptr);
    return pointers;
}

void closeDescriptor(int &descriptor)
{
    if (descriptor >= 0)
        ::close(descriptor);
    descriptor = -1;
}

} // namespace

PlayerProcess::PlayerProcess(QObject *parent) : QObject(parent)
{
    static int counter = 0;
    framePath = QDir::tempPath() + QStringLiteral("/zorvane-player-%1").arg(++counter);
    signal(SIGPIPE, SIG_IGN);
    connect(&ping, &QTimer::timeout, this, [this] { send("ping"); });
}

PlayerProcess::~PlayerProcess()
{
    if (child > 0 && !reaped) {
        ::kill(static_cast<pid_t>(child), SIGKILL);
        ::waitpid(static_cast<pid_t>(child), nullptr, 0);
    }
    notifier.reset();
    closeDescriptor(inputFd);
    closeDescriptor(outputFd);
    closeDescriptor(errorFd);
    QFile::remove(framePath);
}

bool PlayerProcess::start(const QByteArray &url, const QList<QByteArray> &more)
{
    if (!makeFrameFile())
        return false;
    return startWithArguments(QList<QByteArray>{url, QFileInfo(framePath).fileName().toUtf8()} +
                              more);
}

bool PlayerProcess::startWithArguments(const QList<QByteArray> &arguments)
{
    clock.start();
    if (!spawn(arguments))
        return false;
    notifier = std::make_unique<QSocketNotifier>(outputFd, QSocketNotifier::Read);
    connect(notifier.get(), &QSocketNotifier::activated, this, &PlayerProcess::readOutput);
    ping.start(pingMilliseconds);
    return true;
}

void PlayerProcess::send(const QByteArray &command)
{
    const QByteArray line = command + "\n";
    if (inputFd >= 0 && ::write(inputFd, line.constData(), static_cast<size_t>(line.size())) < 0)
        closeDescriptor(inputFd);
}

void PlayerProcess::closeInput()
{
    closeDescriptor(inputFd);
}

void PlayerProcess::closeOutput()
{
    notifier.reset();
    closeDescriptor(outputFd);
}

void PlayerProcess::setReading(bool reading)
{
    notifier->setEnabled(reading);
}

void PlayerProcess::setEnvironment(const QByteArray &name, const QByteArray &value)
{
    environment.append(name + "=" + value);
}

bool PlayerProcess::isRunning()
{
    reap();
    return child > 0 && !reaped;
}

int PlayerProcess::exitCode()
{
    reap();
    return reaped && WIFEXITED(waitStatus) ? WEXITSTATUS(waitStatus) : -1;
}

int PlayerProcess::exitSignal()
{
    reap();
    return reaped && WIFSIGNALED(waitStatus) ? WTERMSIG(waitStatus) : 0;
}

double PlayerProcess::cpuMilliseconds()
{
    reap();
    return cpu;
}

QByteArray PlayerProcess::errorOutput()
{
    QByteArray all;
    std::array<char, maxWriteBytes> bytes;
    ssize_t count = 0;
    while ((count = ::read(errorFd, bytes.data(), bytes.size())) > 0)
        all.append(bytes.data(), static_cast<int>(count));
    return all;
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

int PlayerProcess::lastState() const
{
    const QList<int> all = states();
    return all.isEmpty() ? -1 : all.last();
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

bool PlayerProcess::makeFrameFile()
{
    QFile file(framePath);
    return file.open(QIODevice::WriteOnly) &&
           file.write(QByteArray(frameFileBytes, untouched)) == frameFileBytes;
}

bool PlayerProcess::spawn(const QList<QByteArray> &arguments)
{
    int in[2];
    int out[2];
    int err[2];
    if (pipe2(in, O_CLOEXEC) != 0 || pipe2(out, O_CLOEXEC | O_DIRECT) != 0 ||
        pipe2(err, O_CLOEXEC) != 0)
        return false;
    fcntl(out[0], F_SETPIPE_SZ, pipeBytes);
    fcntl(out[0], F_SETFL, O_NONBLOCK);
    fcntl(err[0], F_SETFL, O_NONBLOCK);

    QMap<QByteArray, QByteArray> variables = currentEnvironment();
    for (const QByteArray &entry : environment)
        variables.insert(entry.left(entry.indexOf('=')), entry.mid(entry.indexOf('=') + 1));
    QList<QByteArray> entries;
    for (auto i = variables.cbegin(); i != variables.cend(); ++i)
        entries.append(i.key() + "=" + i.value());
    const QByteArray program = ZORVANE_BIN_DIR "/vlc-stream";
    QList<QByteArray> command = QList<QByteArray>{program} + arguments;
    std::vector<char *> argv = pointersTo(command);
    std::vector<char *> envp = pointersTo(entries);

    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, in[0], STDIN_FILENO);
    posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, err[1], STDERR_FILENO);
    pid_t pid = -1;
    const int result =
        posix_spawn(&pid, program.constData(), &actions, nullptr, argv.data(), envp.data());
    posix_spawn_file_actions_destroy(&actions);
    ::close(in[0]);
    ::close(out[1]);
    ::close(err[1]);
    inputFd = in[1];
    outputFd = out[0];
    errorFd = err[0];
    child = result == 0 ? pid : -1;
    return result == 0;
}

void PlayerProcess::readOutput()
{
    std::array<char, maxWriteBytes> bytes;
    ssize_t count = 0;
    while ((count = ::read(outputFd, bytes.data(), bytes.size())) > 0) {
        ++writes;
        const QByteArray text(bytes.data(), static_cast<int>(count));
        QList<QByteArray> parts = text.split('\n');
        if (parts.last().isEmpty())
            parts.removeLast();
        for (const QByteArray &line : parts)
            takeLine(line);
    }
    if (count == 0)
        notifier->setEnabled(false);
}

void PlayerProcess::takeLine(const QByteArray &line)
{
    output.append({clock.elapsed(), writes, line});
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

void PlayerProcess::reap()
{
    if (reaped || child <= 0)
        return;
    rusage usage = {};
    if (wait4(static_cast<pid_t>(child), &waitStatus, WNOHANG, &usage) != child)
        return;
    reaped = true;
    const auto milliseconds = [](const timeval &time) {
        return time.tv_sec * 1e3 + time.tv_usec / 1e3;
    };
    cpu = milliseconds(usage.ru_utime) + milliseconds(usage.ru_stime);
    readOutput();
}

} // namespace Tests
} // namespace ZorvaneClient
