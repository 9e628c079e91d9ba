// SPDX-License-Identifier: MIT
#include "tests/e2e/ClientProcess.h"

#include <csignal>

namespace ZorvaneClient::Tests {

namespace {

constexpr int startDeadlineMs = 60000;
constexpr int answerDeadlineMs = 20000;

} // namespace

ClientProcess::ClientProcess(const QString &folder) : place(folder)
{
    connect(&server, &QLocalServer::newConnection, this, &ClientProcess::accept);
    first.setWorkingDirectory(folder);
    first.setProcessChannelMode(QProcess::ForwardedChannels);
}

ClientProcess::~ClientProcess()
{
    if (isClientRunning())
        ::kill(static_cast<pid_t>(introduction.value("pid"_s).toInt()), SIGKILL);
    first.kill();
    first.waitForFinished();
}

void ClientProcess::remember(const QString &email, const QString &password, const QString &language)
{
    QSettings settings(place.filePath("ZorvaneClient.ini"_s), QSettings::IniFormat);
    settings.setValue("auth/email"_s, email);
    settings.setValue("auth/password"_s, password);
    settings.setValue("auth/saveAuth"_s, true);
    settings.setValue("common/language"_s, language);
}

bool ClientProcess::start(const QStringList &arguments)
{
    const QString name = place.absoluteFilePath("driver"_s);
    for (const QString &folder : {"home/.cache"_s, "home/.config"_s, "tmp"_s})
        place.mkpath(folder);
    if (!server.listen(name))
        return false;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert("HOME"_s, place.filePath("home"_s));
    environment.insert("XDG_CACHE_HOME"_s, place.filePath("home/.cache"_s));
    environment.insert("XDG_CONFIG_HOME"_s, place.filePath("home/.config"_s));
    environment.insert("TMPDIR"_s, place.filePath("tmp"_s));
    environment.insert("ZORVANE_DRIVER_SOCKET"_s, name);
    environment.insert("QT_QPA_GENERIC_PLUGINS"_s, "zorvane-driver"_s);
    environment.insert("QT_PLUGIN_PATH"_s, QStringLiteral(ZORVANE_TEST_BIN_DIR "/plugins"));
    first.setProcessEnvironment(environment);
    first.start(QStringLiteral(ZORVANE_BIN_DIR "/ZorvaneClient"), arguments);
    return first.waitForStarted() && waitForClient(1);
}

QString ClientProcess::cacheFile(const QString &file) const
{
    const QDir own(QStandardPaths::writableLocation(QStandardPaths::GenericCacheLocation));
    return place.filePath("home/.cache/"_s + own.relativeFilePath(file));
}

bool ClientProcess::waitForClient(int number)
{
    return QTest::qWaitFor([&] { return clientCount >= number; }, startDeadlineMs);
}

/// False also for one that has ended and was not waited for.
bool ClientProcess::isClientRunning() const
{
    QFile status("/proc/%1/stat"_s.arg(introduction.value("pid"_s).toInt()));
    if (!status.open(QIODevice::ReadOnly))
        return false;
    const QByteArray line = status.readAll();
    return line.mid(line.lastIndexOf(')') + 2, 1) != "Z";
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

QJsonObject ClientProcess::ask(const QStringList &request)
{
    if (!socket)
        return QJsonObject();
    answers.clear();
    socket->write(
        QJsonDocument(QJsonArray::fromStringList(request)).toJson(QJsonDocument::Compact) + '\n');
    const bool answered = QTest::qWaitFor([this] { return !answers.isEmpty(); }, answerDeadlineMs);
    return answered ? answers.takeFirst() : QJsonObject();
}

bool ClientProcess::press(const QString &inClass, const QString &name)
{
    return isDone({"press"_s, inClass, name});
}

bool ClientProcess::choose(const QString &inClass, const QString &name, int index)
{
    return isDone({"choose"_s, inClass, name, QString::number(index)});
}

QStringList ClientProcess::texts(const QString &inClass)
{
    return ask({"texts"_s, inClass}).value("texts"_s).toVariant().toStringList();
}

QImage ClientProcess::picture(const QString &ofClass)
{
    const QString file = place.absoluteFilePath("picture.png"_s);
    return isDone({"grab"_s, ofClass, QString(), file}) ? QImage(file) : QImage();
}

} // namespace ZorvaneClient::Tests
