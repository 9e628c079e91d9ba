// SPDX-License-Identifier: MIT
#pragma once

#include <QJsonObject>
#include <QObject>
#include <QPair>
#include <QStringList>
#include <QVector>

#include "App/ServiceProfile.h"

class QProcess;

namespace ZorvaneDemo {

/// One camera of the running demo service, as its control interface lists it.
struct DemoCamera {
    QString server; ///< for a LAN server "host:port"
    int camera = 0;
    int number = 0; ///< what the strip in its pictures says
    QString name;
    QString serverName;
    bool online = false;
    bool paid = false;
    bool live = false;    ///< the right
    bool archive = false; ///< the right
    bool lan = false;
};

/// One request that the demo service received.
struct DemoRequest {
    QString method;
    QString path;  ///< as it stood on the wire
    QString query; ///< as it stood on the wire
    QByteArray body;
};

/// What goes wrong on purpose; docs/demo-service.md tells the kinds.
struct DemoFault {
    QString kind; ///< close, stall, truncate, garble, slow, delay, empty, redirect, nonjson, status
    QString route;    ///< path, or its beginning when it ends in '*'; empty: every path
    QString listener; ///< "api", "streaming", "flv" or "lan"; empty: all
    QString server;   ///< only requests for this server; empty: all
    int camera = -1;  ///< only requests for this camera; -1: all
    int times = -1;   ///< how many requests it hits; -1: all until cleared
    qint64 value = 0; ///< bytes a second, milliseconds or status, by kind
    qint64 after = 0; ///< bytes of the body that are let through first
    QString location; ///< where a redirect points
};

/// A running `zorvane-demo` on ports of its own. Clips come from a cache that all tests
/// share (ZORVANE_CLIP_CACHE, or a folder of the build tree), so only the first start
/// encodes. Every call blocks in a local event loop until the service has answered;
/// a call that fails returns its empty value and leaves the reason in `errorString()`.
class DemoService : public QObject
{
    Q_OBJECT
    Q_DISABLE_COPY(DemoService)

public:
    struct Options {
        int seed = 1;
        int servers = 5;
        int cameras = 14;
        int lanServers = 1;
        bool plain = false;    ///< every camera online, paid for and with all rights
        int scenes = 2;        ///< how many different clips the cameras share
        bool fullRate = false; ///< 25 pictures a second instead of 10
        QString email = QStringLiteral("demo@zorvane.example");
        QString password = QStringLiteral("demo");
        QStringList further; ///< further arguments as they stand
    };

    explicit DemoService(QObject *parent = nullptr);
    ~DemoService() override;

    /// Starts the program and waits until it is ready.
    bool start(const Options &options);
    bool start() { return start(Options()); }
    /// Ends the program by SIGTERM; its ports and data folder stay reserved for `restart`.
    void stop();
    /// Starts it again on the same ports, data folder and options.
    bool restart();
    QString errorString() const { return error; }
    QProcess *process() const { return program; }

    /// Hosts, ports and certificate authority of this service for the client.
    ZorvaneClient::App::ServiceProfile profile() const;
    int apiPort() const { return ready.value(QLatin1String("api")).toInt(); }
    int streamingPort() const { return ready.value(QLatin1String("streaming")).toInt(); }
    int flvPort() const { return ready.value(QLatin1String("flv")).toInt(); }
    QList<int> lanPorts() const;
    QString lanPassword() const { return ready.value(QLatin1String("lanPassword")).toString(); }
    QString caCertificate() const { return ready.value(QLatin1String("ca")).toString(); }
    QString email() const { return ready.value(QLatin1String("email")).toString(); }
    QString password() const { return ready.value(QLatin1String("password")).toString(); }
    /// Writes `local_roster.txt` with the LAN servers into `folder`.
    bool writeLocalRoster(const QString &folder);

    QVector<DemoCamera> cameras();
    /// The camera of that number; number 0 when there is none.
    DemoCamera camera(int number);

    bool setCameraOnline(const QString &server, int camera, bool online);
    bool setServerOnline(const QString &server, bool online);
    /// Sets any of: online, name, paid, rights (array), rotation, mirror.
    bool setCamera(const QString &server, int camera, const QJsonObject &values);
    /// Gives the camera these records, each begin and end in milliseconds since the epoch,
    /// in place of the made-up ones.
    bool setArchive(const DemoCamera &camera, const QVector<QPair<qint64, qint64>> &records);
    /// Sets any of: online, name, live, archive.
    bool setServer(const QString &server, const QJsonObject &values);
    /// Returns the new server's id.
    QString addServer(const QString &name, int cameras);

    bool dropSessions();
    /// Returns the fault's number, 0 on failure.
    int addFault(const DemoFault &fault);
    bool clearFaults();

    /// Requests received so far whose path is `path`; an empty path: all.
    QVector<DemoRequest> requests(const QString &path = QString());
    int requestCount(const QString &path);
    /// How many FLV streams are being sent.
    int openStreams();
    /// Faults off, sign-in accepted, requests forgotten, the world as at the start.
    bool reset();

    /// One exchange with the control interface; an empty `body` with GET.
    QJsonObject control(const QByteArray &method, const QString &path, const QJsonObject &body);

private:
    /// True if it was accepted.
    bool post(const char *path, const QJsonObject &body);
    bool launch(const QStringList &arguments);

    QProcess *program = nullptr;
    QJsonObject ready;
    QStringList arguments;
    QString dataFolder;
    QString error;
};

} // namespace ZorvaneDemo
