// SPDX-License-Identifier: MIT
#include "demo/client/DemoService.h"

#include <QDeadlineTimer>
#include <QDir>
#include <QEventLoop>
#include <QFile>
#include <QJsonArray>
#include <QJsonDocument>
#include <QProcess>
#include <QTimer>

#include <chrono>

#include "demo/ServiceWords.h"
#include "service/Loopback.h"

namespace ZorvaneDemo {

namespace {

using namespace std::chrono_literals;

// The first start on a machine encodes the test clips.
constexpr auto readyDeadline = 180s;
constexpr auto endDeadline = 10s;
constexpr auto portDeadline = 20s;

QString clipFolder()
{
    const QByteArray chosen = qgetenv("ZORVANE_CLIP_CACHE");
    return chosen.isEmpty() ? QStringLiteral(ZORVANE_CLIP_FOLDER) : QString::fromLocal8Bit(chosen);
}

/// A folder under the working directory that no other service of this process uses.
QString newDataFolder()
{
    static int count = 0;
    return QDir::current().absoluteFilePath(QStringLiteral("demo-data-%1").arg(++count));
}

int milliseconds(std::chrono::milliseconds time)
{
    return static_cast<int>(time.count());
}

} // namespace

DemoService::DemoService(QObject *parent) : DemoControl(parent), program(new QProcess(this))
{
    program->setProcessChannelMode(QProcess::ForwardedErrorChannel);
}

DemoService::~DemoService()
{
    stop();
}

bool DemoService::start(const Options &options)
{
    dataFolder = newDataFolder();
    arguments = QStringList{QStringLiteral("--data"),        dataFolder,
                            QStringLiteral("--clips"),       clipFolder(),
                            QStringLiteral("--scenes"),      QString::number(options.scenes),
                            QStringLiteral("--seed"),        QString::number(options.seed),
                            QStringLiteral("--servers"),     QString::number(options.servers),
                            QStringLiteral("--cameras"),     QString::number(options.cameras),
                            QStringLiteral("--lan-servers"), QString::number(options.lanServers),
                            QStringLiteral("--email"),       options.email,
                            QStringLiteral("--password"),    options.password};
    if (!options.fullRate)
        arguments << QStringLiteral("--test-clips");
    if (options.plain)
        arguments << QStringLiteral("--plain");
    arguments << options.further;
    return launch(arguments);
}

bool DemoService::launch(const QStringList &withArguments)
{
    program->start(QStringLiteral(ZORVANE_BIN_DIR "/zorvane-demo"), withArguments);
    QEventLoop untilReady;
    connect(program, &QProcess::readyReadStandardOutput, &untilReady, [&] {
        if (program->canReadLine())
            untilReady.quit();
    });
    connect(program, &QProcess::stateChanged, &untilReady, [&](QProcess::ProcessState now) {
        if (now == QProcess::NotRunning)
            untilReady.quit();
    });
    QTimer::singleShot(readyDeadline, &untilReady, &QEventLoop::quit);
    if (program->state() != QProcess::NotRunning)
        untilReady.exec();
    if (!program->canReadLine()) {
        error = program->state() == QProcess::NotRunning
                    ? QStringLiteral("zorvane-demo ended with %1").arg(program->exitCode())
                    : QStringLiteral("zorvane-demo was not ready in time");
        stop();
        return false;
    }
    ready = QJsonDocument::fromJson(program->readLine()).object();
    return !ready.isEmpty();
}

void DemoService::stop()
{
    if (program->state() == QProcess::NotRunning)
        return;
    program->terminate();
    if (!program->waitForFinished(milliseconds(endDeadline))) {
        program->kill();
        program->waitForFinished();
    }
}

bool DemoService::restart()
{
    stop();
    QStringList ports;
    for (const int port : lanPorts())
        ports << QString::number(port);
    QStringList again = arguments;
    again << QStringLiteral("--api-port") << QString::number(apiPort())
          << QStringLiteral("--streaming-port") << QString::number(streamingPort())
          << QStringLiteral("--flv-port") << QString::number(flvPort())
          << QStringLiteral("--control-port") << QString::number(controlPort());
    if (!ports.isEmpty())
        again << QStringLiteral("--lan-ports") << ports.join(QLatin1Char(','));
    // A connection of somebody else's may hold one of the ports for a moment.
    for (const QDeadlineTimer deadline(portDeadline); !deadline.hasExpired();) {
        if (launch(again))
            return true;
    }
    return false;
}

ZorvaneClient::App::ServiceProfile DemoService::profile() const
{
    ZorvaneClient::App::ServiceProfile result;
    result.apiHost = QLatin1String(loopback);
    result.apiPort = apiPort();
    result.streamingHost = result.apiHost;
    result.streamingPort = streamingPort();
    result.flvHost = QString::fromStdString(loopbackAddress(flvPort()));
    result.redirectorHost = result.flvHost;
    result.caCertificate = caCertificate();
    return result;
}

QList<int> DemoService::lanPorts() const
{
    QList<int> result;
    const QJsonArray ports = ready.value(QLatin1String("lan")).toArray();
    for (const QJsonValue port : ports)
        result << port.toInt();
    return result;
}

bool DemoService::writeLocalRoster(const QString &folder)
{
    const QJsonValue roster =
        control("GET", QStringLiteral("/local-roster"), {}).value(QLatin1String("roster"));
    QFile file(QDir(folder).filePath(QStringLiteral("local_roster.txt")));
    const QByteArray content = QJsonDocument(roster.toArray()).toJson();
    return roster.isArray() && file.open(QIODevice::WriteOnly) &&
           file.write(content) == content.size();
}

} // namespace ZorvaneDemo
