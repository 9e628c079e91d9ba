// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Test.h"

#include "API/Camera.h"
#include "API/CloudAPIClient.h"
#include "API/Layout.h"
#include "API/LocalServer.h"
#include "App/Environment.h"
#include "App/Settings.h"
#include "tests/support/ScriptedService.h"

using namespace ZorvaneClient::API;

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
    QVERIFY(file.open(QIODevice::WriteOnly) && file.write(content) == content.size());
}

/// True when only its owner gets at the file.
inline bool isPrivate(const QString &fileName)
{
    return QFile::exists(fileName) && !(QFile::permissions(fileName) & QFile::Permissions(0x0077));
}

/// The object that a JSON text describes; its quotes can be single ones.
inline QVariantMap parse(QByteArray json)
{
    return QJsonDocument::fromJson(json.replace('\'', '"')).object().toVariantMap();
}

inline QDir cacheFolder()
{
    return QStandardPaths::writableLocation(QStandardPaths::CacheLocation);
}

inline void emptyCacheFolder()
{
    QVERIFY(cacheFolder().removeRecursively() && QDir().mkpath(cacheFolder().path()));
}

/// Each client with open connections has a thread for them.
inline int networkThreadCount()
{
    QByteArray names;
    for (const QString &task : QDir("/proc/self/task"_s).entryList(QDir::Dirs)) {
        QFile name("/proc/self/task/%1/comm"_s.arg(task));
        if (name.open(QIODevice::ReadOnly))
            names += name.readAll();
    }
    return names.count("QNetworkAccess");
}

/// Ports below 4 refuse on loopback.
inline LocalServerPtr lanServer(int port, const QString &alias = "LAN"_s)
{
    return LocalServerPtr::create(alias, "127.0.0.1"_s, port, "secret"_s);
}

/// Each test function begins without a session, servers and files, at a fixed time.
class CloudFixture : public QObject
{
    Q_OBJECT

protected:
    static void setTime(int seconds)
    {
        App::Environment::setClock(
            [seconds] { return QDateTime::fromSecsSinceEpoch(startStamp + seconds); });
    }

    /// Asks past the throttle and waits for the outcome.
    void updateRoster(const QByteArray &roster = oneServer)
    {
        service.succeed("GET", "/public/roster", roster);
        static int minutes = 0;
        setTime(++minutes * 60);
        QSignalSpy updated(client.get(), &CloudAPIClient::rosterUpdated);
        client->updateRoster();
        QCOMPARE(updated.count(), 0);
        QTRY_COMPARE(updated.count(), 1);
    }

    /// An exchange begun now has its outcome, so all before it were handled.
    void settle()
    {
        QTRY_COMPARE(service.server().openConnections(), 0);
        CloudAPIClient later;
        QSignalSpy failed(&later, &CloudAPIClient::updatesError);
        later.checkForUpdates();
        QTRY_COMPARE(failed.count(), 1);
    }

    ScriptedService service;
    std::unique_ptr<CloudAPIClient> client;

protected slots:
    void initTestCase() { QVERIFY(service.start()); }

    void init()
    {
        setTime(0);
        QFile::remove(rosterFile);
        emptyCacheFolder();
        App::settings().setValue("auth/email"_s, "Demo@Zorvane.EXAMPLE"_s);
        service.reset();
        client = std::make_unique<CloudAPIClient>();
        client->logout();
        QTRY_COMPARE(service.requests().size(), 1);
        service.reset();
    }
};

} // namespace ZorvaneClient::Tests
