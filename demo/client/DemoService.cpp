// SPDX-License-Identifier: MIT
#include "demo/client/DemoService.h"

#include <QCoreApplication>
#include <QDir>
#include <QElapsedTimer>
#include <QEventLoop>
#include <QFile>
#include <QHash>
#include <QJsonArray>
#include <QJsonDocument>
#include <QNetworkAccessManager>
#include <QNetworkProxy>
#include <QNetworkReply>
#include <QProcess>
#include <QTimer>

#include <algorithm>
#include <chrono>

namespace ZorvaneDemo {

namespace {

using namespace std::chrono_literals;

// The first start on a machine encodes the test clips.
constexpr auto readyDeadline = 180s;
constexpr auto endDeadline = 10s;
constexpr auto controlDeadline = 20s;

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

DemoCamera cameraFrom(const QJsonObject &server, const QJsonObject &camera)
{
    const QJsonArray rights = camera.value(QLatin1String("rights")).toArray();
    DemoCamera result;
    result.server = server.value(QLatin1String("id")).toString();
    result.serverName = server.value(QLatin1String("name")).toString();
    result.lan = server.value(QLatin1String("lan")).toBool();
    result.camera = camera.value(QLatin1String("id")).toInt();
    result.number = camera.value(QLatin1String("number")).toInt();
    result.name = camera.value(QLatin1String("name")).toString();
    result.online = camera.value(QLatin1String("online")).toBool();
    result.paid = camera.value(QLatin1String("paid")).toBool();
    result.live = rights.contains(QStringLiteral("live"));
    result.archive = rights.contains(QStringLiteral("archive"));
    return result;
}

DemoRequest requestFrom(const QJsonObject &json)
{
    DemoRequest request;
    request.method = json.value(QLatin1String("method")).toString();
    request.path = json.value(QLatin1String("path")).toString();
    request.query = json.value(QLatin1String("query")).toString();
    request.body = json.value(QLatin1String("body")).toString().toUtf8();
    return request;
}

} // namespace

DemoService::DemoService(QObject *parent) : QObject(parent), program(new QProcess(this))
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
    QElapsedTimer clock;
    clock.start();
    program->start(QStringLiteral(ZORVANE_BIN_DIR "/zorvane-demo"), withArguments);
    const auto finished = [&] { return program->state() == QProcess::NotRunning; };
    while (!program->canReadLine() && !finished() && clock.elapsed() < readyDeadline / 1ms)
        QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents, 50);
    if (!program->canReadLine()) {
        error = finished() ? QStringLiteral("zorvane-demo ended with %1").arg(program->exitCode())
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
          << QStringLiteral("--control-port")
          << QString::number(ready.value(QLatin1String("control")).toInt());
    if (!ports.isEmpty())
        again << QStringLiteral("--lan-ports") << ports.join(QLatin1Char(','));
    return launch(again);
}

ZorvaneClient::App::ServiceProfile DemoService::profile() const
{
    ZorvaneClient::App::ServiceProfile result;
    result.apiHost = QStringLiteral("127.0.0.1");
    result.apiPort = apiPort();
    result.streamingHost = result.apiHost;
    result.streamingPort = streamingPort();
    result.flvHost = QStringLiteral("127.0.0.1:%1").arg(flvPort());
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
    QHash<QString, QString> names;
    const QVector<DemoCamera> world = cameras();
    for (const DemoCamera &camera : world)
        names.insert(camera.server, camera.serverName);
    QJsonArray roster;
    const QList<int> ports = lanPorts();
    for (const int port : ports) {
        const QString id = QStringLiteral("127.0.0.1:%1").arg(port);
        roster.append(QJsonObject{{QStringLiteral("ip"), QStringLiteral("127.0.0.1")},
                                  {QStringLiteral("name"), names.value(id, id)},
                                  {QStringLiteral("password"), lanPassword()},
                                  {QStringLiteral("port"), port}});
    }
    QFile file(QDir(folder).filePath(QStringLiteral("local_roster.txt")));
    const QByteArray content = QJsonDocument(roster).toJson();
    return file.open(QIODevice::WriteOnly) && file.write(content) == content.size();
}

QJsonObject DemoService::control(const QByteArray &method, const QString &path,
                                 const QJsonObject &body)
{
    QNetworkAccessManager manager;
    manager.setProxy(QNetworkProxy::NoProxy);
    QNetworkRequest request(QUrl(QStringLiteral("http://127.0.0.1:%1%2")
                                     .arg(ready.value(QLatin1String("control")).toInt())
                                     .arg(path)));
    request.setHeader(QNetworkRequest::ContentTypeHeader, QStringLiteral("application/json"));
    QNetworkReply *reply = manager.sendCustomRequest(
        request, method, body.isEmpty() ? QByteArray() : QJsonDocument(body).toJson());
    QEventLoop loop;
    connect(reply, &QNetworkReply::finished, &loop, &QEventLoop::quit);
    QTimer::singleShot(controlDeadline, &loop, &QEventLoop::quit);
    loop.exec();
    if (!reply->isFinished() || reply->error() != QNetworkReply::NoError) {
        error = QStringLiteral("%1: %2 %3")
                    .arg(path, reply->errorString(), QString::fromUtf8(reply->readAll()));
        return QJsonObject();
    }
    return QJsonDocument::fromJson(reply->readAll()).object();
}

QVector<DemoCamera> DemoService::cameras()
{
    QVector<DemoCamera> result;
    const QJsonArray servers = control("GET", QStringLiteral("/world"), QJsonObject())
                                   .value(QLatin1String("servers"))
                                   .toArray();
    for (const QJsonValue server : servers) {
        const QJsonArray list = server.toObject().value(QLatin1String("cameras")).toArray();
        for (const QJsonValue camera : list)
            result << cameraFrom(server.toObject(), camera.toObject());
    }
    return result;
}

bool DemoService::post(const char *path, const QJsonObject &body)
{
    return !control("POST", QLatin1String(path), body).isEmpty();
}

DemoCamera DemoService::camera(int number)
{
    const QVector<DemoCamera> all = cameras();
    const auto found = std::find_if(all.begin(), all.end(), [number](const DemoCamera &camera) {
        return camera.number == number;
    });
    return found == all.end() ? DemoCamera() : *found;
}

bool DemoService::setCameraOnline(const QString &server, int camera, bool online)
{
    return setCamera(server, camera, {{QStringLiteral("online"), online}});
}

bool DemoService::setServerOnline(const QString &server, bool online)
{
    return setServer(server, {{QStringLiteral("online"), online}});
}

bool DemoService::setCamera(const QString &server, int camera, const QJsonObject &values)
{
    QJsonObject body = values;
    body.insert(QStringLiteral("server"), server);
    body.insert(QStringLiteral("camera"), camera);
    return post("/cameras/set", body);
}

bool DemoService::setArchive(const DemoCamera &camera,
                             const QVector<QPair<qint64, qint64>> &records)
{
    QJsonArray list;
    for (const auto &[start, end] : records)
        list.append(QJsonArray{start, end});
    return post("/cameras/archive", {{QStringLiteral("server"), camera.server},
                                     {QStringLiteral("camera"), camera.camera},
                                     {QStringLiteral("records"), list}});
}

bool DemoService::setServer(const QString &server, const QJsonObject &values)
{
    QJsonObject body = values;
    body.insert(QStringLiteral("server"), server);
    return post("/servers/set", body);
}

QString DemoService::addServer(const QString &name, int cameras)
{
    return control("POST", QStringLiteral("/servers/add"),
                   {{QStringLiteral("name"), name}, {QStringLiteral("cameras"), cameras}})
        .value(QLatin1String("server"))
        .toString();
}

bool DemoService::dropSessions()
{
    return post("/sessions/drop", QJsonObject());
}

int DemoService::addFault(const DemoFault &fault)
{
    return control("POST", QStringLiteral("/faults/add"),
                   {{QStringLiteral("kind"), fault.kind},
                    {QStringLiteral("route"), fault.route},
                    {QStringLiteral("listener"), fault.listener},
                    {QStringLiteral("server"), fault.server},
                    {QStringLiteral("camera"), fault.camera},
                    {QStringLiteral("times"), fault.times},
                    {QStringLiteral("value"), fault.value},
                    {QStringLiteral("after"), fault.after},
                    {QStringLiteral("location"), fault.location}})
        .value(QLatin1String("fault"))
        .toInt();
}

bool DemoService::clearFaults()
{
    return post("/faults/clear", QJsonObject());
}

QVector<DemoRequest> DemoService::requests(const QString &path)
{
    QVector<DemoRequest> result;
    const QJsonArray list = control("GET", QStringLiteral("/requests?path=") + path, QJsonObject())
                                .value(QLatin1String("requests"))
                                .toArray();
    for (const QJsonValue request : list)
        result << requestFrom(request.toObject());
    return result;
}

int DemoService::requestCount(const QString &path)
{
    return control("GET", QStringLiteral("/requests?path=") + path, QJsonObject())
        .value(QLatin1String("count"))
        .toInt();
}

int DemoService::openStreams()
{
    return control("GET", QStringLiteral("/streams"), QJsonObject())
        .value(QLatin1String("open"))
        .toInt(-1);
}

bool DemoService::reset()
{
    return post("/reset", QJsonObject());
}

} // namespace ZorvaneDemo
