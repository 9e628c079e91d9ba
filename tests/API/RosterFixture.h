// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Test.h"

#include "API/CloudAPIClient.h"
#include "tests/support/ScriptedService.h"

namespace ZorvaneClient::Tests {

const QString rosterFile = "local_roster.txt"_s;
const QByteArray oneServer = R"({"x":{"id":"s1","name":"One","online":true}})";

/// Ports below 4 refuse on loopback.
API::LocalServerPtr lanServer(int port, const QString &alias = "LAN"_s);

/// Each test function begins without a session, servers and roster file, at a fixed time, with
/// a service that lists `oneServer`.
class RosterFixture : public QObject
{
    Q_OBJECT

protected:
    static void setTime(int seconds);
    /// Asks past the throttle and waits for the outcome.
    void update(API::CloudAPIClient *client);

    ScriptedService service;

private slots:
    void initTestCase();
    void init();
};

} // namespace ZorvaneClient::Tests
