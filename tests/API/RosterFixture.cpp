// SPDX-License-Identifier: MIT
#include "tests/API/RosterFixture.h"

#include "tests/support/Test.h"

#include "API/LocalServer.h"
#include "App/Environment.h"

namespace ZorvaneClient::Tests {

API::LocalServerPtr lanServer(int port, const QString &alias)
{
    return API::LocalServerPtr::create(alias, "127.0.0.1"_s, port, "secret"_s);
}

void RosterFixture::initTestCase()
{
    QVERIFY(service.start());
}

void RosterFixture::init()
{
    setTime(0);
    QDir().rmdir(rosterFile);
    QFile::remove(rosterFile);
    service.reset();
    API::CloudAPIClient().logout();
    QTRY_COMPARE(service.requests().size(), 1);
    service.reset();
    service.succeed("GET", "/public/roster", oneServer);
}

void RosterFixture::setTime(int seconds)
{
    const QDateTime time = QDateTime(QDate(2026, 11, 14), QTime(9, 0)).addSecs(seconds);
    App::Environment::setClock([time] { return time; });
}

void RosterFixture::update(API::CloudAPIClient *client)
{
    static int minutes = 0;
    constexpr int pastThrottleSeconds = 60;
    setTime(++minutes * pastThrottleSeconds);
    QSignalSpy updated(client, &API::CloudAPIClient::rosterUpdated);
    QSignalSpy failed(client, &API::CloudAPIClient::rosterUpdateError);
    const int requests = service.requestsTo("/public/roster").size();
    client->updateRoster();
    QTRY_COMPARE(updated.count() + failed.count(), 1);
    QVERIFY(service.requestsTo("/public/roster").size() > requests);
}

} // namespace ZorvaneClient::Tests
