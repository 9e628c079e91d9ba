// SPDX-License-Identifier: MIT
#include "tests/e2e/ClientProcess.h"

#include <QDir>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QLocalSocket>
#include <QProcessEnvironment>
#include <QtTest>

#include <csignal>
#include <sys/types.h>

namespace ZorvaneClient {
namespace Tests {

namespace {

constexpr int startDeadlineMs = 60000;
constexpr int answerDeadlineMs = 20000;

QJsonObject request(const char *what, const QString &inClass, const QString &name = QString())
{
    return {{QStringLiteral("do"), QLatin1String(what)},
            {QStringLiteral("in"), inClass},
            {QStringLiteral("name"), name}};
}

bool isDone(const QJsonObject &answer)
{
    return answer.value(QLatin1String("done")).toBool();
}

/// False also for one that has ended and was not waited for.
bool isRunning(int pid)
{
    QFile status(QStringLiteral("/proc/%1/stat").arg(pid));
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
    const int pid = introduction.value(QLatin1String("pid")).toInt();
    if (isRunning(pid))
        ::kill(static_cast<pid_t>(pid), SIGKILL);
    if (first.state() != QProcess::NotRunning) {
        first.kill();
        first.waitForFinished();
    }
}

bool ClientProcess::start(const QStringList &arguments)
{
    const QString name = QDir::temp().absoluteFilePath(QStringLiteral("driver"));
    QLocalServer::removeServer(name);
    if (!server.listen(name))
        return false;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("ZORVANE_DRIVER_SOCKET"), name);
    environment.insert(QStringLiteral("QT_QPA_GENERIC_PLUGINS"), QStringLiteral("zorvane-driver"));
    environment.insert(QStringLiteral("QT_PLUGIN_PATH"),
                       QStringLiteral(ZORVANE_TEST_BIN_DIR "/plugins"));
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
    return isRunning(introduction.value(QLatin1String("pid")).toInt());
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
        if (line.contains(QLatin1String("pid"))) {
            introduction = line;
            links.clear();
            ++clientCount;
        } else if (line.contains(QLatin1String("opened"))) {
            links.append(line.value(QLatin1String("opened")).toString());
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
    QJsonObject question = request("press", QStringLiteral("QMessageBox"));
    question.insert(QStringLiteral("button"), ok ? QStringLiteral("ok") : QStringLiteral("cancel"));
    return isDone(ask(question));
}

bool ClientProcess::choose(const QString &inClass, const QString &name, int index)
{
    QJsonObject choice = request("choose", inClass, name);
    choice.insert(QStringLiteral("index"), index);
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
    const QJsonArray found = ask(request("texts", inClass)).value(QLatin1String("texts")).toArray();
    for (const QJsonValue text : found)
        list.append(text.toString());
    return list;
}

} // namespace Tests
} // namespace ZorvaneClient
