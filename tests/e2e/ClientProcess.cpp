// SPDX-License-Identifier: MIT
#include "tests/e2e/ClientProcess.h"

#include "tests/support/Test.h"

#include <csignal>
#include <sys/types.h>

namespace ZorvaneClient::Tests {

namespace {

constexpr int startDeadlineMs = 60000;
constexpr int answerDeadlineMs = 20000;

QJsonObject request(const char *what, const QString &inClass, const QString &name = QString())
{
    return {{"do"_s, QLatin1String(what)}, {"in"_s, inClass}, {"name"_s, name}};
}

bool isDone(const QJsonObject &answer)
{
    return answer.value("done"_s).toBool();
}

/// False also for one that has ended and was not waited for.
bool isRunning(int pid)
{
    QFile status("/proc/%1/stat"_s.arg(pid));
    if (pid <= 0 || !status.open(QIODevice::ReadOnly))
        return false;
    const QByteArray line = status.readAll();
    return line.mid(line.lastIndexOf(')') + 2, 1) != "Z";
}

} // namespace

ClientProcess::ClientProcess(const QString &folder)
{
    connect(&server, &QLocalServer::newConnection, this, &ClientProcess::accept);
    first.setWorkingDirectory(folder);
    first.setProcessChannelMode(QProcess::ForwardedChannels);
}

ClientProcess::~ClientProcess()
{
    const int pid = introduction.value("pid"_s).toInt();
    if (isRunning(pid))
        ::kill(static_cast<pid_t>(pid), SIGKILL);
    if (first.state() != QProcess::NotRunning) {
        first.kill();
        first.waitForFinished();
    }
}

bool ClientProcess::start(const QStringList &arguments)
{
    const QString name = QDir::temp().absoluteFilePath("driver"_s);
    QLocalServer::removeServer(name);
    if (!server.listen(name))
        return false;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("ZORVANE_DRIVER_SOCKET"_s, name);
    environment.insert("QT_QPA_GENERIC_PLUGINS"_s, "zorvane-driver"_s);
    environment.insert("QT_PLUGIN_PATH"_s, QStringLiteral(ZORVANE_TEST_BIN_DIR "/plugins"));
    first.setProcessEnvironment(environment);
    first.start(QStringLiteral(ZORVANE_BIN_DIR "/ZorvaneClient"), arguments);
    return first.waitForStarted() && waitForClient(1);
}

bool ClientProcess::waitForClient(int number)
{
    return QTest::qWaitFor([&] { return clientCount >= number; }, startDeadlineMs);
}

bool ClientProcess::isClientRunning() const
{
    return isRunning(introduction.value("pid"_s).toInt());
}

void ClientProcess::accept()
{
    socket = server.nextPendingConnection();
    connect(socket, &QLocalSocket::readyRead, this, &ClientProcess::readLines);
    readLines();
}

void ClientProcess::readLines()
{
    while (socket->canReadLine()) {
        const QJsonObject line = QJsonDocument::fromJson(socket->readLine()).object();
        if (line.contains("pid"_s)) {
            introduction = line;
            links.clear();
            ++clientCount;
        } else if (line.contains("opened"_s)) {
            links.append(line.value("opened"_s).toString());
        } else {
            answers.append(line);
        }
    }
}

QJsonObject ClientProcess::ask(const QJsonObject &asked)
{
    if (!socket)
        return QJsonObject();
    answers.clear();
    socket->write(QJsonDocument(asked).toJson(QJsonDocument::Compact) + '\n');
    const bool answered = QTest::qWaitFor([this] { return !answers.isEmpty(); }, answerDeadlineMs);
    return answered ? answers.takeFirst() : QJsonObject();
}

bool ClientProcess::press(const QString &inClass, const QString &name)
{
    return isDone(ask(request("press", inClass, name)));
}

bool ClientProcess::answerQuestion(bool ok)
{
    QJsonObject question = request("press", "QMessageBox"_s);
    question.insert("button"_s, ok ? "ok"_s : "cancel"_s);
    return isDone(ask(question));
}

bool ClientProcess::choose(const QString &inClass, const QString &name, int index)
{
    QJsonObject choice = request("choose", inClass, name);
    choice.insert("index"_s, index);
    return isDone(ask(choice));
}

bool ClientProcess::close(const QString &className)
{
    return isDone(ask(request("close", className)));
}

bool ClientProcess::shows(const QString &className)
{
    return isDone(ask(request("look", className)));
}

QStringList ClientProcess::texts(const QString &inClass)
{
    QStringList list;
    const QJsonArray found = ask(request("texts", inClass)).value("texts"_s).toArray();
    for (const QJsonValue text : found)
        list.append(text.toString());
    return list;
}

} // namespace ZorvaneClient::Tests
