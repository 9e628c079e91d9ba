// SPDX-License-Identifier: MIT
#pragma once

#include "tests/support/Test.h"

#include "demo/client/DemoService.h"
#include "tests/demo/DemoClient.h"

namespace ZorvaneClient::Tests {

/// What tests of the demo service share: a running one, reset before each test, and a client
/// that has signed in.
class DemoTest : public QObject
{
    Q_OBJECT

protected:
    explicit DemoTest(const DemoService::Options &serviceOptions = DemoService::Options())
        : client(service), world(serviceOptions)
    {
    }

    /// Cameras 1 to 4 in the cloud and 5 to 7 at a LAN server, with all rights.
    static DemoService::Options plainWorld()
    {
        DemoService::Options result;
        result.servers = 2;
        result.cameras = 4;
        result.plain = true;
        return result;
    }

    DemoService service;
    DemoClient client;
    QString session;

private slots:
    void initTestCase() { QVERIFY2(service.start(world), qPrintable(service.errorString())); }
    void init()
    {
        QVERIFY(service.reset());
        session = client.session();
        QVERIFY(!session.isEmpty());
    }

private:
    const DemoService::Options world;
};

} // namespace ZorvaneClient::Tests
