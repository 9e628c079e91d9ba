// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Test.h"

#include "API/CloudAPIClient.h"
#include "API/LocalServer.h"
#include "App/Environment.h"
#include "App/Settings.h"
#include "tests/support/ScriptedService.h"

namespace ZorvaneClient::Tests {

const QString rosterFile = "local_roster.txt"_s;
const QByteArray oneServer =
    R"({"x":{"id":"s1","name":"One","cameras":{"7":{"id":7},"8":{"id":8},"9":{"id":9}}}})";
/// 2026-11-14 09:00:00 UTC.
constexpr int startStamp = 1794646800;

/// What of a file is there to read.
inline QByteArray contentOf(const QString &fileName)
{
    QFile file(fileName);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

inline void writeFile(const QString &fileName, const QByteArray &content)
{
    QFile file(fileName);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write(content);
}

/// Ports below 4 refuse on loopback.
inline API::LocalServerPtr lanServer(int port, const QString &alias = "LAN"_s)
{
    return API::LocalServerPtr::create(alias, "127.0.0.1"_s, port, "secret"_s);
}

/// Each test function begins without a session, servers and files, at a fixed time, with a
/// service that lists `oneServer`.
class CloudFixture : public QObject
{
    Q_OBJECT

protected:
    static QString cacheFolder()
    {
        return QStandardPaths::writableLocation(QStandardPaths::CacheLocation);
    }

    static void setTime(int seconds)
    {
        const QDateTime time = QDateTime::fromSecsSinceEpoch(startStamp + seconds);
        App::Environment::setClock([time] { return time; });
    }

    /// Asks past the throttle and waits for the outcome.
    void updateRoster(API::CloudAPIClient *client)
    {
        static int minutes = 0;
        constexpr int pastThrottleSeconds = 60;
        setTime(++minutes * pastThrottleSeconds);
        QSignalSpy updated(client, &API::CloudAPIClient::rosterUpdated);
        QSignalSpy failed(client, &API::CloudAPIClient::rosterUpdateError);
        client->updateRoster();
        QCOMPARE(updated.count(), 0);
        QTRY_COMPARE(updated.count() + failed.count(), 1);
    }

    ScriptedService service;

protected slots:
    void initTestCase() { QVERIFY(service.start()); }

    void init()
    {
        setTime(0);
        QDir().rmdir(rosterFile);
        QFile::remove(rosterFile);
        QVERIFY(QDir(cacheFolder()).removeRecursively());
        QVERIFY(QDir().mkpath(cacheFolder()));
        App::settings().setValue("auth/email"_s, "Demo@Zorvane.EXAMPLE"_s);
        service.reset();
        API::CloudAPIClient().logout();
        QTRY_COMPARE(service.requests().size(), 1);
        service.reset();
        service.succeed("GET", "/public/roster", oneServer);
    }
};

} // namespace ZorvaneClient::Tests
