// SPDX-License-Identifier: MIT
#pragma once

#include <QJsonObject>
#include <QStringList>

#include "App/ServiceProfile.h"
#include "demo/client/DemoControl.h"

class QProcess;

namespace ZorvaneDemo {

/// A running `zorvane-demo` on ports of its own. Clips come from a cache that all tests
/// share (ZORVANE_CLIP_CACHE, or a folder of the build tree), so only the first start
/// encodes. While it runs, it is driven by its control interface.
class DemoService : public DemoControl
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

private:
    int controlPort() const override { return ready.value(QLatin1String("control")).toInt(); }
    bool launch(const QStringList &arguments);

    QProcess *program = nullptr;
    QJsonObject ready;
    QStringList arguments;
    QString dataFolder;
};

} // namespace ZorvaneDemo
